// Reading the text of a date field (RFC 5322, section 3.3).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zqv::email {

// As the text has them: nothing is checked against a calendar, and a year of two digits stays one.
struct DateFields {
  std::int64_t year, month, day, hour, minute, second;
  int zone;  // +0200 is 200, -0130 is -130; 0 for none
};

// The fields as the MIME library reads them; it never fails. QUIRK: a text that is no date gives
// one all the same, an empty one 1 January 1970. Equal to the MIME library's results. Test:
// Dates.TakeWhatTheLibraryReads.
DateFields ReadDateText(std::string_view text);

// The date text of a Received field's value: what follows its first "; ", the blank included.
// Nothing without one. QUIRK: the first "; " counts, even inside a comment before the date. Part of
// the interface's contract; changing it is a major version. Test:
// Dates.FirstSemicolonAndBlankWins.
std::optional<std::string_view> ReceivedDateText(std::string_view value);

}  // namespace zqv::email
