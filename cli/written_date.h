// Dates as the sender wrote them, in the sender's time zone. The library instead converts dates to
// the machine's time zone.
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
  std::optional<int> offset;  // of the time zone from UTC, in minutes; unset when it is not stated
};

// A fault in the value of a Date field. kNoDate: it is not a valid date and time of day such as
// "Sat, 20 Jan 2024 18:00:00 +0000" (RFC 5322, section 3.3); the day name, the seconds and the zone
// may be missing. kEarlyYear: the year is before 1000. Text after the date is ignored.
enum class DateFault { kNone, kNoDate, kEarlyYear };
DateFault FindDateFault(std::string_view value);

// Parses the value of a Date field. Nothing when the fault is kNoDate. A year before 1000 is
// completed: 2000 is added to years below 50 and 1900 to the others (after RFC 5322, section 4.3).
std::optional<WrittenDate> ReadWrittenDate(std::string_view value);

// Formats a date: "2024-01-20T19:00:00+01:00" (RFC 3339). The offset is "-00:00" when no zone is
// stated.
std::string Rfc3339(const WrittenDate& date);
// Formats the same instant in UTC: "2024-01-20T18:00:00Z". Without a stated zone, UTC is assumed.
std::string Rfc3339Utc(const WrittenDate& date);
// Returns the instant in seconds from 1970-01-01 00:00:00 UTC. Without a stated zone, UTC is
// assumed.
std::int64_t SecondsOf(const WrittenDate& date);

// Parses the text of an option to the first and the last second of a period: "2024", "2024-01",
// "2024-01-20", "2024-01-20T18:00:00". A time may be followed by a zone, "Z" or "+02:00"; otherwise
// UTC is assumed. Nothing for any other text.
struct Period {
  std::int64_t first;
  std::int64_t last;
};
std::optional<Period> ReadPeriod(std::string_view text);

}  // namespace zqv::cli
