// What a reader wants to know of a message first.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/attached_files.h"
#include "cli/message.h"
#include "cli/written_date.h"
#include "standin/handles.h"

namespace zqv::cli {

// A labelled thing; what a message does not have takes no entry.
struct SummaryEntry {
  std::string label;
  std::vector<std::string> lines;  // safe text, at least one
};

// Subject, dates, addresses as the message has them, and what there is besides the plain text.
std::vector<SummaryEntry> SummaryOf(const standin::Object& email, const PartTree& tree,
                                    const MailReading& reading);

// The text of a message's field as it is written, decoded for reading; empty when there is none.
std::string WrittenText(const MessageSource& source, std::string_view name);

// The message's Date field; nothing when it has none that is a date.
std::optional<WrittenDate> DateOf(const MessageSource& source);

// Whether a file is one that a reader counts: no frame, and to be shown within the text or not.
bool IsListed(const FoundFile& file, bool is_inline);

// "2024-04-16 14:02:05", in the machine's time zone as the library reckons it. `date` is one of the
// host's own; nil gives an empty text.
std::string DateText(const standin::Object& date);

// The plain text, which is made from HTML when there is none. Nil also when it is nothing but the
// bytes of something attached: a message that is one picture, say, has those for its plain text.
standin::String ReadablePlainText(const standin::Object& email, const MailReading& reading);

}  // namespace zqv::cli
