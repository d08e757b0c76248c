// The arithmetic behind the host's class "Date": a count of seconds since 1904-01-01 00:00:00 in
// the date's own local reckoning, and its calendar fields.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zqv::standin {

class Date {
 public:
  enum Field : std::size_t { kYear, kMonth, kDay, kHour, kMinute, kSecond };
  static constexpr std::size_t kFieldCount = 6;
  using Fields = std::array<std::int64_t, kFieldCount>;

  // The new date of a fixed moment, so that tests repeat:
  // 2001-01-31 12:34:56: a day that most months do not have, so that setting the month of a new
  // date before its day shows.
  Date();

  // Year, month from 1, day from 1, hour, minute, second; fractions are cut off.
  Fields fields() const;

  // Fields out of range roll over: day 31 of June is 1 July. False, and nothing set, for values
  // too large to be reckoned with.
  bool SetFields(const Fields& fields);
  bool SetField(Field field, std::int64_t value);

  // Fractions included.
  double total_seconds() const { return total_seconds_; }
  // False, and nothing set, for what is no number or too large.
  bool SetTotalSeconds(double seconds);

  // "2019-01-01T10:00:00"
  std::string IsoText() const;

 private:
  double total_seconds_ = 0;
};

}  // namespace zqv::standin
