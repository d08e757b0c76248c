#include "standin/date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zqv::standin {
namespace {

std::string Iso(const Date::Fields& fields) {
  Date date;
  EXPECT_TRUE(date.SetFields(fields));
  return date.IsoText();
}

TEST(DateTest, CountsSecondsFrom1904) {
  Date date;
  ASSERT_TRUE(date.SetFields({1904, 1, 1, 0, 0, 0}));
  EXPECT_EQ(date.total_seconds(), 0.0);
  ASSERT_TRUE(date.SetFields({1904, 1, 2, 0, 0, 1}));
  EXPECT_EQ(date.total_seconds(), 86'401.0);
  // 1970 begins 66 years with 17 leap days after 1904, which is 24,107 days.
  ASSERT_TRUE(date.SetFields({1970, 1, 1, 0, 0, 0}));
  EXPECT_EQ(date.total_seconds(), 2'082'844'800.0);
  ASSERT_TRUE(date.SetFields({2019, 1, 1, 10, 0, 0}));
  EXPECT_EQ(date.total_seconds(), 2'082'844'800.0 + 1'546'336'800.0);
}

TEST(DateTest, TotalSecondsMoveTheFields) {
  Date date;
  ASSERT_TRUE(date.SetFields({2019, 1, 1, 10, 0, 0}));
  ASSERT_TRUE(date.SetTotalSeconds(date.total_seconds() - 11 * 3600));
  EXPECT_EQ(date.IsoText(), "2018-12-31T23:00:00");
  ASSERT_TRUE(date.SetTotalSeconds(-1));
  EXPECT_EQ(date.IsoText(), "1903-12-31T23:59:59");
}

TEST(DateTest, FractionsAreKeptButNotShown) {
  Date date;
  ASSERT_TRUE(date.SetTotalSeconds(59.75));
  EXPECT_EQ(date.fields()[Date::kSecond], 59);
  EXPECT_EQ(date.total_seconds(), 59.75);
}

TEST(DateTest, FieldsRollOver) {
  EXPECT_EQ(Iso({2019, 6, 31, 0, 0, 0}), "2019-07-01T00:00:00");
  EXPECT_EQ(Iso({2019, 13, 1, 0, 0, 0}), "2020-01-01T00:00:00");
  EXPECT_EQ(Iso({2019, 0, 1, 0, 0, 0}), "2018-12-01T00:00:00");
  EXPECT_EQ(Iso({2019, -11, 1, 0, 0, 0}), "2018-01-01T00:00:00");
  EXPECT_EQ(Iso({2019, 1, 0, 0, 0, 0}), "2018-12-31T00:00:00");
  EXPECT_EQ(Iso({2019, 1, 1, 24, 60, 60}), "2019-01-02T01:01:00");
  EXPECT_EQ(Iso({2019, 1, 1, 0, 0, -1}), "2018-12-31T23:59:59");
}

TEST(DateTest, LeapYears) {
  EXPECT_EQ(Iso({2000, 2, 29, 0, 0, 0}), "2000-02-29T00:00:00");
  EXPECT_EQ(Iso({1900, 2, 29, 0, 0, 0}), "1900-03-01T00:00:00");
  EXPECT_EQ(Iso({2024, 12, 31, 0, 0, 0}), "2024-12-31T00:00:00");
  EXPECT_EQ(Iso({2023, 2, 29, 0, 0, 0}), "2023-03-01T00:00:00");
}

TEST(DateTest, SettingOneFieldRollsOverToo) {
  Date date;
  ASSERT_TRUE(date.SetFields({2019, 1, 31, 0, 0, 0}));
  ASSERT_TRUE(date.SetField(Date::kMonth, 2));
  EXPECT_EQ(date.IsoText(), "2019-03-03T00:00:00");
}

TEST(DateTest, NewDateHasADayThatFewMonthsHave) {
  EXPECT_EQ(Date().IsoText(), "2001-01-31T12:34:56");
}

TEST(DateTest, EveryDayOfFourCenturiesComesBack) {
  Date date;
  ASSERT_TRUE(date.SetFields({1800, 1, 1, 0, 0, 0}));
  const double first = date.total_seconds();
  constexpr int kDays = 146'097;
  int year = 1800;
  int month = 1;
  int day = 1;
  for (int i = 0; i < kDays; ++i) {
    ASSERT_TRUE(date.SetTotalSeconds(first + 86'400.0 * i));
    const Date::Fields f = date.fields();
    ASSERT_TRUE(f[0] == year && f[1] == month && f[2] == day) << date.IsoText();
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const int february = leap ? 29 : 28;
    const int length = month == 2                                              ? february
                       : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                               : 31;
    if (++day > length) {
      day = 1;
      if (++month > 12) {
        month = 1;
        ++year;
      }
    }
  }
  EXPECT_EQ(year, 2200);
}

TEST(DateTest, RefusesValuesOutOfRange) {
  Date date;
  const std::string before = date.IsoText();
  EXPECT_FALSE(date.SetField(Date::kYear, std::numeric_limits<std::int64_t>::max()));
  EXPECT_FALSE(date.SetField(Date::kYear, 2'000'000));
  EXPECT_FALSE(date.SetField(Date::kSecond, std::numeric_limits<std::int64_t>::min()));
  EXPECT_FALSE(date.SetTotalSeconds(std::nan("")));
  EXPECT_FALSE(date.SetTotalSeconds(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(date.IsoText(), before);
}

}  // namespace
}  // namespace zqv::standin
