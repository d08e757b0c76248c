#include "cli/written_date.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

TEST(DateTest, MayLackDayNameSecondsAndZone) {
  for (const std::string_view text :
       {"Sat, 20 Jan 2024 18:00:00 +0000"sv, "20 Jan 2024 18:00"sv, "sat 1 january 2024 8:0:60 Z"sv,
        "29 Feb 2024 0:00 (leap \\) (year))"sv, " Sat,20\tJan 2024 18:00:00"sv}) {
    EXPECT_EQ(FindDateFault(text), DateFault::kNone) << text;
  }
}

TEST(DateTest, IsOfTheCalendar) {
  for (const std::string_view text :
       {""sv, "soon"sv, "20 Jan 2024"sv, "20 Jan 2024 18"sv, "30 Feb 2024 18:00"sv,
        "29 Feb 2023 18:00"sv, "0 Jan 2024 18:00"sv, "32 Jan 2024 18:00"sv, "20 Jax 2024 18:00"sv,
        "20 Jan 2024 24:00"sv, "20 Jan 2024 18:60"sv, "20 Jan 2024 18:00:61"sv,
        "20 Jan 2024 6:00:00 PM"sv, "2024-01-20 18:00"sv, "20 Jan 20240 18:00"sv, "(20 Jan"sv,
        "20 Jan 2024 (x) 18:00"sv}) {
    EXPECT_EQ(FindDateFault(text), DateFault::kNoDate) << text;
  }
  EXPECT_EQ(FindDateFault("20 Jan 24 18:00"), DateFault::kEarlyYear);
  EXPECT_EQ(FindDateFault("20 Jan 0102 18:00"), DateFault::kEarlyYear);
}

std::string Read(std::string_view value) {
  const std::optional<WrittenDate> date = ReadWrittenDate(value);
  return date ? Rfc3339(*date) : std::string();
}

TEST(WrittenDateTest, KeepsItsZone) {
  EXPECT_EQ(Read("Sat, 20 Jan 2024 18:00:01 -0330"), "2024-01-20T18:00:01-03:30");
  EXPECT_EQ(Read("20 Jan 2024 18:00 +0530 (somewhere)"), "2024-01-20T18:00:00+05:30");
  EXPECT_EQ(Read("20 Jan 2024 18:00 PDT"), "2024-01-20T18:00:00-07:00");
  EXPECT_EQ(Read("20 Jan 2024 18:00"), "2024-01-20T18:00:00-00:00");
  EXPECT_EQ(Read("20 Jan 2024 18:00 +9999"), "2024-01-20T18:00:00-00:00");
  EXPECT_EQ(Read("20 Jan 99 18:00 Z"), "1999-01-20T18:00:00+00:00");
  EXPECT_EQ(Read("20 Jan 49 18:00 Z"), "2049-01-20T18:00:00+00:00");
  EXPECT_EQ(Read("soon"), "");
}

TEST(WrittenDateTest, IsTheSameInstantInUtc) {
  const auto utc = [](std::string_view value) { return Rfc3339Utc(*ReadWrittenDate(value)); };
  EXPECT_EQ(utc("1 Mar 2024 00:30 +0100"), "2024-02-29T23:30:00Z");
  EXPECT_EQ(utc("31 Dec 1999 23:59:59 -0001"), "2000-01-01T00:00:59Z");
  EXPECT_EQ(utc("28 Feb 1900 23:00 -0200"), "1900-03-01T01:00:00Z");
  EXPECT_EQ(utc("1 Jan 1600 00:00 +0000"), "1600-01-01T00:00:00Z");
  EXPECT_EQ(SecondsOf(*ReadWrittenDate("1 Jan 1970 00:00:00 +0000")), 0);
  EXPECT_EQ(SecondsOf(*ReadWrittenDate("9 Sep 2001 01:46:40 GMT")), 1000000000);
}

TEST(PeriodTest, HasTheLengthOfItsName) {
  const auto length = [](std::string_view text) -> std::int64_t {
    const std::optional<Period> period = ReadPeriod(text);
    return period ? period->last - period->first + 1 : -1;
  };
  EXPECT_EQ(length("2023"), 365 * 86400);
  EXPECT_EQ(length("2024-02"), 29 * 86400);
  EXPECT_EQ(length("2024-12"), 31 * 86400);
  EXPECT_EQ(length("2024-12-31"), 86400);
  EXPECT_EQ(length("2024-12-31T10:00"), 1);
  EXPECT_EQ(ReadPeriod("2001-09-09T03:46:40+02:00")->first, 1000000000);
  for (const std::string_view text :
       {""sv, "24"sv, "2024-"sv, "2024-13"sv, "2024-00"sv, "2024-01-32"sv, "2024-01-01T"sv,
        "2024-01-01T25:00"sv, "2024-01-01T10:00x"sv, "soon"sv}) {
    EXPECT_EQ(length(text), -1) << text;
  }
}

}  // namespace
}  // namespace zqv::cli
