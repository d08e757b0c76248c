// Reading the text of a date field (RFC 5322, section 3.3).
#pragma once

#include <cstdint>
#include <string_view>

namespace zqv::email {

// As the text has them: nothing is checked against a calendar, and a year of two digits stays one.
struct DateFields {
  std::int64_t year, month, day, hour, minute, second;
  int zone;  // +0200 is 200, -0130 is -130; 0 for none
};

// What the MIME library makes of any text; it never fails. QUIRK: a text that is no date gives one
// all the same, an empty one 1 January 1970. The results agree with the library's.
// Test: Dates.TakeWhatTheLibraryReads.
DateFields ReadDateText(std::string_view text);

}  // namespace zqv::email
