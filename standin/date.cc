// The proleptic Gregorian calendar in whole days and seconds. Values are limited, so that every sum
// fits 64 bits and is exact in a double.
#include "standin/date.h"

#include <cmath>
#include <cstdio>

namespace zqv::standin {
namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kMaxField = 1'000'000'000;
constexpr double kMaxSeconds = 3e13;
constexpr std::int64_t kEpochYear = 1904;

// Division that rounds down. `b` must be positive.
constexpr std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
  return a / b - (a % b != 0 && (a % b < 0) != (b < 0) ? 1 : 0);
}

constexpr bool IsLeap(std::int64_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr std::array<int, 12> kMonthDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

constexpr std::int64_t DaysInMonth(std::int64_t year, std::size_t month_index) {
  return kMonthDays[month_index] + (month_index == 1 && IsLeap(year) ? 1 : 0);
}

// Days from January 1 of the epoch's year to January 1 of `year`.
constexpr std::int64_t DaysBeforeYear(std::int64_t year) {
  const auto leaps = [](std::int64_t before) {
    return FloorDiv(before, 4) - FloorDiv(before, 100) + FloorDiv(before, 400);
  };
  return 365 * (year - kEpochYear) + leaps(year - 1) - leaps(kEpochYear - 1);
}
static_assert(DaysBeforeYear(1904) == 0 && DaysBeforeYear(1905) == 366);

// The year that contains a day; days count from the epoch. The estimate by the average length of a
// year is right or one too late, because the epoch begins with a leap year.
std::int64_t YearOfDay(std::int64_t day) {
  std::int64_t year = kEpochYear + FloorDiv(day * 400, 146'097);
  while (DaysBeforeYear(year) > day) --year;
  return year;
}

}  // namespace

Date::Date() { SetFields({2001, 1, 31, 12, 34, 56}); }

Date::Fields Date::fields() const {
  const auto seconds = static_cast<std::int64_t>(std::floor(total_seconds_));
  std::int64_t day = FloorDiv(seconds, kSecondsPerDay);
  const std::int64_t of_day = seconds - day * kSecondsPerDay;
  const std::int64_t year = YearOfDay(day);
  day -= DaysBeforeYear(year);
  std::size_t month_index = 0;
  while (day >= DaysInMonth(year, month_index)) day -= DaysInMonth(year, month_index++);
  return {year,
          static_cast<std::int64_t>(month_index) + 1,
          day + 1,
          of_day / 3600,
          of_day / 60 % 60,
          of_day % 60};
}

bool Date::SetFields(const Fields& fields) {
  for (const std::int64_t field : fields) {
    if (field < -kMaxField || field > kMaxField) return false;
  }
  const std::int64_t months = fields[kMonth] - 1;
  const std::int64_t year = fields[kYear] + FloorDiv(months, 12);
  const auto month_index = static_cast<std::size_t>(months - FloorDiv(months, 12) * 12);
  std::int64_t days = DaysBeforeYear(year) + fields[kDay] - 1;
  for (std::size_t i = 0; i < month_index; ++i) days += DaysInMonth(year, i);
  const std::int64_t seconds =
      days * kSecondsPerDay + fields[kHour] * 3600 + fields[kMinute] * 60 + fields[kSecond];
  return SetTotalSeconds(static_cast<double>(seconds));
}

bool Date::SetField(Field field, std::int64_t value) {
  Fields all = fields();
  all[field] = value;
  return SetFields(all);
}

bool Date::SetTotalSeconds(double seconds) {
  if (!(std::fabs(seconds) <= kMaxSeconds)) return false;
  total_seconds_ = seconds;
  return true;
}

std::string Date::IsoText() const {
  const Fields f = fields();
  std::array<char, 128> text{};
  static_cast<void>(std::snprintf(
      text.data(), text.size(), "%04lld-%02lld-%02lldT%02lld:%02lld:%02lld",
      static_cast<long long>(f[0]), static_cast<long long>(f[1]), static_cast<long long>(f[2]),
      static_cast<long long>(f[3]), static_cast<long long>(f[4]), static_cast<long long>(f[5])));
  return text.data();
}

}  // namespace zqv::standin
