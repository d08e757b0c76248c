// The value of an object of the host's class "Date": seconds since 1904-01-01 00:00:00 in the
// date's own time zone, which is not stored, and calendar fields that are calculated from them.
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

  // 2001-01-31 12:34:56, the value of every new date. It is fixed, so that tests are repeatable.
  // Most months have no day 31, so code that sets the month of a new date before its day gives a
  // wrong date, which tests notice.
  Date();

  // Year, month from 1, day from 1, hour, minute, second. Fractions of a second are cut off.
  Fields fields() const;

  // Set all fields or one. A field out of range rolls over: day 31 of June is 1 July. False,
  // without a change, when a value is too large for the calculation.
  bool SetFields(const Fields& fields);
  bool SetField(Field field, std::int64_t value);

  // With the fraction of a second.
  double total_seconds() const { return total_seconds_; }
  // False, without a change, when `seconds` is not a number or too large.
  bool SetTotalSeconds(double seconds);

  // Date and time without a zone: "2019-01-01T10:00:00".
  std::string IsoText() const;

 private:
  double total_seconds_ = 0;
};

}  // namespace zqv::standin
