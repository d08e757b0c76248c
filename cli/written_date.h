// A Date field as it is written: its own time of day, and its own zone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqv::cli {

struct WrittenDate {
  int year = 0;  // of four digits
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  std::optional<int> offset;  // of the zone from UTC, in minutes; nothing when it names none
};

// What is wrong with the value of a Date field: it should be a day of the calendar and a time of
// day as in "Sat, 20 Jan 2024 18:00:00 +0000" (RFC 5322, section 3.3), where day name, seconds and
// zone may be missing, in a year from 1000 on. What follows is not looked at.
enum class DateFault { kNone, kNoDate, kEarlyYear };
DateFault FindDateFault(std::string_view value);

// The date in the value of a Date field; nothing for kNoDate. A year of two or three digits is one
// from 1950 to 2049 (RFC 5322, section 4.3).
std::optional<WrittenDate> ReadWrittenDate(std::string_view value);

// "2024-01-20T19:00:00+01:00" (RFC 3339); with "-00:00" when no zone is named.
std::string Rfc3339(const WrittenDate& date);
// The same instant in UTC, "2024-01-20T18:00:00Z". A date without a zone is taken for UTC.
std::string Rfc3339Utc(const WrittenDate& date);
// Seconds from 1970-01-01 00:00:00 UTC on.
std::int64_t SecondsOf(const WrittenDate& date);

// The first and the last second of what a text names: "2024", "2024-01", "2024-01-20",
// "2024-01-20T18:00:00", in UTC unless a zone such as "Z" or "+02:00" follows the time; nothing for
// any other text.
struct Period {
  std::int64_t first;
  std::int64_t last;
};
std::optional<Period> ReadPeriod(std::string_view text);

}  // namespace zqv::cli
