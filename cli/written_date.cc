#include "cli/written_date.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iterator>

#include "base/ascii.h"
#include "cli/mail_text.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kDays[] = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr std::string_view kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                        "jul", "aug", "sep", "oct", "nov", "dec"};
struct NamedZone {
  std::string_view name;
  int hours;
};
constexpr NamedZone kZones[] = {{"UT", 0},   {"GMT", 0},  {"Z", 0},    {"UTC", 0},
                                {"EST", -5}, {"EDT", -4}, {"CST", -6}, {"CDT", -5},
                                {"MST", -7}, {"MDT", -6}, {"PST", -8}, {"PDT", -7}};
constexpr std::array<int, 12> kDaysOfMonths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Parses a date from the front of a text.
class DateReader {
 public:
  explicit DateReader(std::string_view text) : rest_(text) {}

  // The result. Valid when Run has returned anything but kNoDate.
  const WrittenDate& date() const { return date_; }

  DateFault Run() {
    SkipDayName();
    const std::optional<int> day = Number(2);
    const std::optional<std::size_t> month = Name(kMonths);
    const std::optional<int> year = Number(4);
    const bool is_day = day && month && year && IsDay(*day, *month, *year);
    if (!is_day || !SkipTime() || SkipHalf()) return DateFault::kNoDate;
    date_.year = *year;
    date_.month = static_cast<int>(*month) + 1;
    date_.day = *day;
    ReadZone();
    constexpr int kFirstOfFourDigits = 1000;
    return *year < kFirstOfFourDigits ? DateFault::kEarlyYear : DateFault::kNone;
  }

 private:
  static bool IsDay(int day, std::size_t month, int year) {
    const bool is_leap = month == 1 && year % 4 == 0;
    return day >= 1 && day <= kDaysOfMonths[month] + (is_leap ? 1 : 0);
  }

  bool SkipTime() {
    const std::optional<int> hour = Number(2);
    if (!Skip(':')) return false;
    const std::optional<int> minute = Number(2);
    const std::optional<int> second = Skip(':') ? Number(2) : 0;
    const bool is_time = hour && minute && second && *hour < 24 && *minute < 60 && *second <= 60;
    if (!is_time) return false;
    date_.hour = *hour;
    date_.minute = *minute;
    date_.second = *second;
    return true;
  }

  // Parses a zone: "+0200", or a name (RFC 5322, section 4.3). "-0000" means that the zone is not
  // known.
  void ReadZone() {
    SkipBlanks();
    const char sign = rest_.empty() ? '\0' : rest_.front();
    if (sign == '+' || sign == '-') {
      rest_.remove_prefix(1);
      constexpr std::size_t kZoneDigits = 4;
      const bool is_zone = rest_.size() >= kZoneDigits &&
                           std::all_of(rest_.begin(), rest_.begin() + kZoneDigits, base::IsDigit);
      const std::optional<int> zone = is_zone ? Number(kZoneDigits) : std::nullopt;
      if (!zone || *zone % 100 >= 60 || *zone >= 2400) return;
      if (sign == '-' && *zone == 0) return;
      const int minutes = *zone / 100 * 60 + *zone % 100;
      date_.offset = sign == '-' ? -minutes : minutes;
      return;
    }
    for (const NamedZone& zone : kZones) {
      const std::string_view word = rest_.substr(0, rest_.find_first_of(" \t(;,"));
      if (base::EqualsIgnoringCase(word, zone.name)) date_.offset = zone.hours * 60;
    }
  }

  // Whether "AM" or "PM" follows, which is not valid in mail.
  bool SkipHalf() {
    SkipBlanks();
    const std::string_view word = rest_.substr(0, 2);
    return base::EqualsIgnoringCase(word, "am") || base::EqualsIgnoringCase(word, "pm");
  }

  void SkipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size())); }

  bool Skip(char c) {
    SkipBlanks();
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void SkipDayName() {
    if (Name(kDays)) Skip(',');
  }

  // Parses a number of 1 to `most` digits.
  std::optional<int> Number(std::size_t most) {
    SkipBlanks();
    const std::size_t length = std::min(rest_.find_first_not_of(kDigits), rest_.size());
    if (length == 0 || length > most) return std::nullopt;
    int value = 0;
    for (const char c : rest_.substr(0, length)) value = value * 10 + (c - '0');
    rest_.remove_prefix(length);
    return value;
  }

  // Parses a word whose first three letters are one of the names. Returns the name's index.
  template <std::size_t kCount>
  std::optional<std::size_t> Name(const std::string_view (&names)[kCount]) {
    SkipBlanks();
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), base::IsLetter);
    const std::string_view word = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    const auto found = std::find_if(std::begin(names), std::end(names), [&](std::string_view name) {
      return base::EqualsIgnoringCase(word.substr(0, name.size()), name);
    });
    if (found == std::end(names)) return std::nullopt;
    rest_.remove_prefix(word.size());
    return static_cast<std::size_t>(found - std::begin(names));
  }

  std::string_view rest_;
  WrittenDate date_;
};

// Returns the number of days from 1970-01-01. The Gregorian calendar is used for all years.
std::int64_t DaysOf(std::int64_t year, int month, int day) {
  // The year begins in March here, so that the leap day is its last day.
  constexpr int kDaysOfCycle = 146097;  // in 400 years
  constexpr int kDaysBefore1970 = 719468;
  year -= month <= 2 ? 1 : 0;
  const std::int64_t cycle = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t of_cycle = year - cycle * 400;
  const std::int64_t of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return cycle * kDaysOfCycle + of_cycle * 365 + of_cycle / 4 - of_cycle / 100 + of_year -
         kDaysBefore1970;
}

std::string Format(const WrittenDate& date) {
  std::array<char, 80> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", date.year,
                    date.month, date.day, date.hour, date.minute, date.second);
  return {text.data(), static_cast<std::size_t>(length)};
}

// Converts an instant to date and time of day in UTC.
WrittenDate InUtc(std::int64_t seconds) {
  constexpr std::int64_t kDay = 86400;
  const std::int64_t days = (seconds >= 0 ? seconds : seconds - kDay + 1) / kDay;
  const auto of_day = static_cast<int>(seconds - days * kDay);
  WrittenDate date;
  date.hour = of_day / 3600;
  date.minute = of_day / 60 % 60;
  date.second = of_day % 60;
  date.year = static_cast<int>(1970 + days / 366);
  while (DaysOf(date.year + 1, 1, 1) <= days) ++date.year;
  while (DaysOf(date.year, 1, 1) > days) --date.year;
  date.month = 1;
  while (date.month < 12 && DaysOf(date.year, date.month + 1, 1) <= days) ++date.month;
  date.day = static_cast<int>(days - DaysOf(date.year, date.month, 1)) + 1;
  date.offset = 0;
  return date;
}

// Takes a number of exactly `count` digits from the front of `text`. Nothing when there are fewer.
std::optional<int> TakeDigits(std::size_t count, std::string_view* text) {
  if (text->size() < count || text->find_first_not_of(kDigits) < count) return std::nullopt;
  int number = 0;
  for (const char c : text->substr(0, count)) number = number * 10 + (c - '0');
  text->remove_prefix(count);
  return number;
}

bool TakeOne(char c, std::string_view* text) {
  if (text->empty() || text->front() != c) return false;
  text->remove_prefix(1);
  return true;
}

// Takes a time such as "T18:00:00" or "T18:00". False when there is none.
bool TakeTime(WrittenDate* date, std::string_view* text) {
  if (!TakeOne('T', text) && !TakeOne(' ', text)) return false;
  const std::optional<int> hour = TakeDigits(2, text);
  if (!hour || !TakeOne(':', text)) return false;
  const std::optional<int> minute = TakeDigits(2, text);
  const std::optional<int> second = TakeOne(':', text) ? TakeDigits(2, text) : 0;
  if (!minute || !second || *hour > 23 || *minute > 59 || *second > 60) return false;
  date->hour = *hour;
  date->minute = *minute;
  date->second = *second;
  return true;
}

// Takes a zone: "Z" or "+02:00". False when there is none.
bool TakeZone(WrittenDate* date, std::string_view* text) {
  date->offset = 0;
  if (TakeOne('Z', text)) return true;
  const bool is_west = TakeOne('-', text);
  if (!is_west && !TakeOne('+', text)) return false;
  const std::optional<int> hours = TakeDigits(2, text);
  TakeOne(':', text);
  const std::optional<int> minutes = TakeDigits(2, text);
  if (!hours || !minutes || *hours > 23 || *minutes > 59) return false;
  date->offset = (*hours * 60 + *minutes) * (is_west ? -1 : 1);
  return true;
}

}  // namespace

DateFault FindDateFault(std::string_view value) { return DateReader(value).Run(); }

std::optional<WrittenDate> ReadWrittenDate(std::string_view value) {
  const std::string line = Unfolded(value);
  DateReader reader(line);
  if (reader.Run() == DateFault::kNoDate) return std::nullopt;
  WrittenDate date = reader.date();
  if (date.year < 50) {
    date.year += 2000;
  } else if (date.year < 1000) {
    date.year += 1900;
  }
  return date;
}

std::string Rfc3339(const WrittenDate& date) {
  if (!date.offset) return Format(date) + "-00:00";
  const int minutes = *date.offset < 0 ? -*date.offset : *date.offset;
  std::array<char, 40> zone{};
  static_cast<void>(std::snprintf(zone.data(), zone.size(), "%c%02d:%02d",
                                  *date.offset < 0 ? '-' : '+', minutes / 60, minutes % 60));
  return Format(date) + zone.data();
}

std::string Rfc3339Utc(const WrittenDate& date) { return Format(InUtc(SecondsOf(date))) + "Z"; }

std::int64_t SecondsOf(const WrittenDate& date) {
  const std::int64_t minutes = date.hour * 60 + date.minute - date.offset.value_or(0);
  return (DaysOf(date.year, date.month, date.day) * 24 * 60 + minutes) * 60 + date.second;
}

std::optional<Period> ReadPeriod(std::string_view text) {
  WrittenDate date;
  date.month = date.day = 1;
  const std::optional<int> year = TakeDigits(4, &text);
  if (!year) return std::nullopt;
  date.year = *year;
  WrittenDate next = date;  // the start of the next period
  int* const fields[] = {&date.year, &date.month, &date.day};
  int* const next_fields[] = {&next.year, &next.month, &next.day};
  std::size_t known = 0;
  for (; known < 2 && !text.empty(); ++known) {
    const std::optional<int> number = TakeOne('-', &text) ? TakeDigits(2, &text) : std::nullopt;
    if (!number || *number < 1 || *number > (known == 0 ? 12 : 31)) return std::nullopt;
    *fields[known + 1] = *next_fields[known + 1] = *number;
  }
  if (text.empty()) {
    ++*next_fields[known];
    if (next.month > 12) {
      next.month = 1;
      ++next.year;
    }
    return Period{SecondsOf(date), SecondsOf(next) - 1};
  }
  if (!TakeTime(&date, &text)) return std::nullopt;
  if ((!text.empty() && !TakeZone(&date, &text)) || !text.empty()) return std::nullopt;
  return Period{SecondsOf(date), SecondsOf(date)};
}

}  // namespace zqv::cli
