// Selects the messages that a verb works on, by their contents.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/session.h"
#include "cli/source.h"

namespace zqv::cli {

// A message must satisfy all conditions that are set. The texts are searched for anywhere in the
// decoded fields, ignoring case.
struct Filter {
  std::string from;
  std::string to;  // searched for in To, Cc and Bcc
  std::string subject;
  std::optional<std::int64_t> since;  // earliest instant of the Date field, in seconds from 1970
  std::optional<std::int64_t> until;  // latest instant, inclusive
  bool has_attachment = false;        // the message must have a file that is not displayed inline
  std::string finding;  // code of a finding (cli/findings.h) that the message must have

  bool IsEmpty() const;
};

// Whether a message satisfies the filter. True for a message that cannot be read, so that the verb
// reports the failure.
bool Passes(const Filter& filter, const Session& session, const Item& item);

}  // namespace zqv::cli
