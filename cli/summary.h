// The most important facts about a message, for a reader.
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

// A label with its lines. There is no entry for something that the message lacks.
struct SummaryEntry {
  std::string label;
  std::vector<std::string> lines;  // escaped for a terminal; at least one
};

// Returns subject, dates, addresses, and what the message contains besides its plain text.
std::vector<SummaryEntry> SummaryOf(const standin::Object& email, const PartTree& tree,
                                    const MailReading& reading);

// Returns the value of a message's field, decoded for a reader. Empty when there is none.
std::string WrittenText(const MessageSource& source, std::string_view name);

// Returns the date of the message's Date field. Nothing when the field is missing or not a date.
std::optional<WrittenDate> DateOf(const MessageSource& source);

// Whether to list a file under "Inline parts" (if `is_inline`) or "Attachments".
bool IsListed(const FoundFile& file, bool is_inline);

// Formats a Date of the host in the machine's time zone, as the library calculates it: "2024-04-16
// 14:02:05". Empty for nil.
std::string DateText(const standin::Object& date);

// Returns the message's plain text, which the library makes from HTML if there is none. Nil when it
// consists of the bytes of an attached file: the library gives a message that is a single picture
// the picture's bytes as plain text.
standin::String ReadablePlainText(const standin::Object& email, const MailReading& reading);

}  // namespace zqv::cli
