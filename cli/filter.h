// Which messages a verb is to work on, by what is in them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/session.h"
#include "cli/source.h"

namespace zqv::cli {

// A message must have all that is asked for. Texts are looked for anywhere in a field as it is
// read, whatever their case.
struct Filter {
  std::string from;
  std::string to;  // in To, Cc or Bcc
  std::string subject;
  std::optional<std::int64_t> since;  // seconds from 1970 on of the Date field's instant
  std::optional<std::int64_t> until;  // the same, included
  bool has_attachment = false;        // a file that is not to be shown within the text
  std::string finding;                // the code of something that check says

  bool IsEmpty() const;
};

// Whether a message passes. One that cannot be read does, for whoever reads it to say why.
bool Passes(const Filter& filter, const Session& session, const Item& item);

}  // namespace zqv::cli
