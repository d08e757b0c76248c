// What a reader wants to know of a message first.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/message.h"
#include "standin/handles.h"

namespace zqv::cli {

// A labelled thing; what a message does not have takes no entry.
struct SummaryEntry {
  std::string label;
  std::vector<std::string> lines;  // safe text, at least one
};

// Subject, dates, addresses, and what there is besides the plain text.
std::vector<SummaryEntry> SummaryOf(const standin::Object& email, const PartTree& tree,
                                    const std::vector<Attached>& attached);

// "2024-04-16 14:02:05", in the machine's time zone as the library reckons it. `date` is one of the
// host's own; nil gives an empty text.
std::string DateText(const standin::Object& date);

// The plain text, which is made from HTML when there is none. Nil also when it is nothing but the
// bytes of something attached: a message that is one picture, say, has those for its plain text.
standin::String ReadablePlainText(const standin::Object& email,
                                  const std::vector<Attached>& attached);

}  // namespace zqv::cli
