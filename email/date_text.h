// Parses the text of a date (RFC 5322, section 3.3), from a Date or a Received field.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zqv::email {

// The numbers as they stand in the text: not checked against a calendar, and a year of two digits
// is not completed. January is month 1.
struct DateFields {
  std::int64_t year, month, day, hour, minute, second;
  int zone;  // the decimal number +-hhmm: +0200 is 200, -0130 is -130; 0 without a zone
};

// Parses a date. QUIRK: never fails: a text that is no date gives the numbers that mimetic (the
// MIME library, THIRD_PARTY.md) gives, and an empty text gives those of 1 January 1970. Equal to
// mimetic's result. Test: Dates.TakeWhatMimeticReads.
DateFields ReadDateText(std::string_view text);

// Returns the text of the date in the value of a Received field (RFC 5322, section 3.6.7):
// everything after the semicolon of the first "; ", so that it begins with the space. Nullopt when
// the value has no "; ".
// [borrowed from `value`] QUIRK: the first "; " is used, even inside a comment before the date.
// Part of the interface's contract; changing it is a major version. Test:
// Dates.FirstSemicolonAndBlankWins.
std::optional<std::string_view> ReceivedDateText(std::string_view value);

}  // namespace zqv::email
