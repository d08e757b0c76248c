// The date reader compared with mimetic's: regular dates, and regular dates in which characters
// were changed.
#include "email/date_text.h"

#include <gtest/gtest.h>
#include <mimetic/rfc822/datetime.h>

#include <random>
#include <string>
#include <string_view>

namespace zqv::test {
namespace {

std::string Show(std::int64_t year, int month, std::int64_t day, std::int64_t hour,
                 std::int64_t minute, std::int64_t second, int zone) {
  std::string shown;
  for (const std::int64_t part : {year, std::int64_t{month}, day, hour, minute, second}) {
    shown += std::to_string(part) + " ";
  }
  return shown + std::to_string(zone);
}

std::string Read(std::string_view text) {
  const email::DateFields date = email::ReadDateText(text);
  return Show(date.year, static_cast<int>(date.month), date.day, date.hour, date.minute,
              date.second, date.zone);
}

std::string LibraryReads(const std::string& text) {
  const mimetic::DateTime date(text);
  return Show(date.year(), date.month().ordinal(), date.day(), date.hour(), date.minute(),
              date.second(), date.zone().ordinal());
}

struct DateRow {
  const char* text;
  const char* fields;  // year month day hour minute second zone
};
constexpr DateRow kRegular[] = {
    {"Tue, 1 Jan 2019 10:00:00 +0200", "2019 1 1 10 0 0 200"},
    {" Tue, 31 Dec 2019 23:59:58 -0130", "2019 12 31 23 59 58 -130"},
    {"1 Feb 2020 1:02:03 +0000", "2020 2 1 1 2 3 0"},
    {"tuesday,29 FEB 2000 00:00:00 -0000", "2000 2 29 0 0 0 0"},
    {"Mon, 12 May 2026 10:15:29 +0100 (CET)", "2026 5 12 10 15 29 100"},
    {"Mon,  12 Mar 2026 10:15:29 +1245  (a comment <of> words)  ", "2026 3 12 10 15 29 1245"},
    {"99 Nov 9999 99:99:99 +9999(x)", "9999 11 99 99 99 99 9999"},
};

TEST(DateText, ReadsRegularDates) {
  for (const DateRow& row : kRegular) {
    EXPECT_EQ(Read(row.text), row.fields) << row.text;
    EXPECT_EQ(LibraryReads(row.text), row.fields) << row.text;
  }
}

TEST(DateText, KnowsEveryMonth) {
  int number = 0;
  for (const char* name :
       {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"}) {
    const std::string text = "Tue, 1 " + std::string(name) + " 2019 10:00:00 +0200";
    EXPECT_EQ(email::ReadDateText(text).month, ++number);
    EXPECT_EQ(Read(text), LibraryReads(text));
  }
}

const std::string kCharacters = std::string(" ,:+-()\"<>;aJnMT0129\t\r\n\\\x80") + '\0';

TEST(DateText, ReadsAsMimeticDoesWhateverOneCharacterIs) {
  std::size_t compared = 0;
  for (const DateRow& row : kRegular) {
    const std::string text = row.text;
    for (std::size_t at = 0; at <= text.size(); ++at) {
      for (const char c : kCharacters) {
        for (const std::size_t replaced : {0U, 1U, 2U}) {
          std::string other = text;
          other.replace(at, replaced, 1, c);
          ASSERT_EQ(Read(other), LibraryReads(other)) << ::testing::PrintToString(other);
          ++compared;
        }
      }
      for (const std::size_t removed : {1U, 2U, 3U, 4U, 99U}) {
        const std::string rest = std::string(text).erase(at, removed);
        ASSERT_EQ(Read(rest), LibraryReads(rest)) << rest;
      }
    }
  }
  EXPECT_GT(compared, 15000U);
}

TEST(DateText, ReadsAsMimeticDoesAfterRandomChanges) {
  std::mt19937 random(20260101);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  for (int i = 0; i < 50000; ++i) {
    std::string text = kRegular[below(std::size(kRegular))].text;
    for (std::size_t change = below(5); change > 0; --change) {
      const char c = kCharacters[below(kCharacters.size())];
      text.replace(below(text.size() + 1), below(3), below(3), c);
    }
    ASSERT_EQ(Read(text), LibraryReads(text)) << ::testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace zqv::test
