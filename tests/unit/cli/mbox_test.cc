#include "cli/mbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqv::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kSeparator = "From ada@example.com Sat Jan  3 01:05:34 1996\n";

// Splits a file that is added in pieces of `step` bytes, and returns its messages.
std::vector<std::string> Split(std::string_view file, std::size_t step) {
  std::vector<std::string> messages;
  MboxSplitter splitter([&](std::string&& message) {
    messages.push_back(std::move(message));
    return true;
  });
  for (; !file.empty(); file.remove_prefix(std::min(step, file.size()))) {
    if (!splitter.Add(file.substr(0, step))) break;
  }
  splitter.Finish();
  return messages;
}

TEST(MboxSeparator, HasAMonthAndATime) {
  EXPECT_TRUE(IsMboxSeparator("From ada@example.com Sat Jan  3 01:05:34 1996"));
  EXPECT_TRUE(IsMboxSeparator("From ada@example.com Sat Jan  3 1:05 1996 +0100"));
  EXPECT_TRUE(IsMboxSeparator("From - Sat Dec 31 23:59:60 1996"));
  EXPECT_FALSE(IsMboxSeparator("From ada@example.com"));
  EXPECT_FALSE(IsMboxSeparator("From time to time in Jan we meet at 9"));
  EXPECT_FALSE(IsMboxSeparator("From 9:30 on it rained"));
  EXPECT_FALSE(IsMboxSeparator("From here January 01:05:34"));
  EXPECT_FALSE(IsMboxSeparator("From ada Jan 1:5"));
  EXPECT_FALSE(IsMboxSeparator("From ada Jan a:05"));
  EXPECT_FALSE(IsMboxSeparator("From ada Jan 101:05"));
  EXPECT_FALSE(IsMboxSeparator("from ada@example.com Sat Jan  3 01:05:34 1996"));
  EXPECT_FALSE(IsMboxSeparator("From: ada@example.com Sat Jan  3 01:05:34 1996"));
  EXPECT_FALSE(IsMboxSeparator(">From ada@example.com Sat Jan  3 01:05:34 1996"));
  EXPECT_FALSE(IsMboxSeparator(""));
}

TEST(MboxSplitterTest, GivesTheSameForPiecesOfAnySize) {
  const std::string file = kSeparator + "A: 1\n\none\n>From x\n\n" + kSeparator +
                           "A: 2\r\n\r\ntwo\r\n\r\n" + kSeparator + "A: 3\n\nFrom " +
                           "long\n\n\nthree";
  for (const std::size_t step : {1U, 2U, 3U, 7U, 16U, 1000U}) {
    EXPECT_THAT(Split(file, step), ElementsAre("A: 1\n\none\nFrom x\n", "A: 2\r\n\r\ntwo\r\n",
                                               "A: 3\n\nFrom long\n\n\nthree"))
        << step;
  }
}

TEST(MboxSplitterTest, RemovesOneEmptyLineBeforeASeparator) {
  EXPECT_THAT(Split(kSeparator + "a\n\n\n\n" + kSeparator + "b\n\n\n", 1000),
              ElementsAre("a\n\n\n", "b\n\n"));
}

TEST(MboxSplitterTest, NeedsAnEmptyLineBeforeASeparator) {
  EXPECT_THAT(Split(kSeparator + "a\n" + kSeparator + "b\n", 1000),
              ElementsAre("a\n" + kSeparator + "b\n"));
  EXPECT_THAT(Split(kSeparator + kSeparator + "b\n", 1000), ElementsAre(kSeparator + "b\n"));
}

TEST(MboxSplitterTest, GivesEmptyMessages) {
  EXPECT_THAT(Split(kSeparator, 1000), ElementsAre(""));
  EXPECT_THAT(Split(kSeparator + "\n" + kSeparator + "\n\n", 1000), ElementsAre("", "\n"));
}

TEST(MboxSplitterTest, RemovesOneSignFromQuotedLinesOnly) {
  EXPECT_THAT(Split(kSeparator + ">From a\n>>>From b\n> From c\n>From\n>Fro", 1000),
              ElementsAre("From a\n>>From b\n> From c\n>From\n>Fro"));
}

TEST(MboxSplitterTest, StopsAtTextThatIsNoMailbox) {
  EXPECT_THAT(Split("A: 1\n\n" + kSeparator + "b\n", 1000), IsEmpty());
  MboxSplitter splitter([](std::string&&) { return true; });
  EXPECT_FALSE(splitter.Add("A: 1\n"));
}

TEST(MboxSplitterTest, StopsWhenTheVisitorReturnsFalse) {
  int count = 0;
  MboxSplitter splitter([&](std::string&&) { return ++count < 2; });
  std::string file;
  for (int i = 0; i < 5; ++i) file += kSeparator + "a\n\n";
  EXPECT_FALSE(splitter.Add(file));
  EXPECT_FALSE(splitter.Finish());
  EXPECT_EQ(count, 2);
}

// A message with a Content-Length field.
std::string WithLength(const std::string& length, const std::string& body) {
  return "A: 1\nContent-Length: " + length + "\n\n" + body;
}
std::string WithLength(const std::string& body) {
  return WithLength(std::to_string(body.size()), body);
}

TEST(MboxLengths, KeepLinesThatLookLikeSeparators) {
  const std::string body = "one\n\n" + kSeparator + ">From here\n\n";
  const std::string file =
      kSeparator + WithLength(body) + "\n" + kSeparator + WithLength("two\n") + "\n";
  for (const std::size_t step : {1U, 2U, 3U, 7U, 16U, 1000U}) {
    EXPECT_THAT(Split(file, step), ElementsAre(WithLength(body), WithLength("two\n"))) << step;
  }
}

TEST(MboxLengths, NeedNoEmptyLineBehindTheMessage) {
  EXPECT_THAT(Split(kSeparator + WithLength("one\n") + kSeparator + WithLength("two\n"), 1000),
              ElementsAre(WithLength("one\n"), WithLength("two\n")));
}

TEST(MboxLengths, UnquoteLinesOfABodyWithoutSeparators) {
  const std::string body = "one\n>From here\n";
  EXPECT_THAT(Split(kSeparator + WithLength(body) + "\n" + kSeparator + "A: 2\n\n", 1000),
              ElementsAre(WithLength(std::to_string(body.size()), "one\nFrom here\n"), "A: 2\n"));
}

// A wrong Content-Length has the same effect as a missing one.
TEST(MboxLengths, AreIgnoredWhenWrong) {
  const std::string body = "one\n>From here\n";
  const std::string plain = "one\nFrom here\n";
  for (const char* const length :
       {"0", "1", "3", "5", "14", "17", "18", "19", "100", "-1", "-16", "x", "", "0x10", "67108865",
        "4294967296", "18446744073709551615", "18446744073709551616", "99999999999999999999999"}) {
    const std::string file =
        kSeparator + WithLength(length, body) + "\n" + kSeparator + "A: 2\n\ntwo\n";
    for (const std::size_t step : {1U, 7U, 1000U}) {
      EXPECT_THAT(Split(file, step), ElementsAre(WithLength(length, plain), "A: 2\n\ntwo\n"))
          << length;
    }
  }
}

TEST(MboxLengths, AreIgnoredAfterAWrongOne) {
  const std::string body = "two\n\n" + kSeparator + "x\n";
  EXPECT_THAT(Split(kSeparator + WithLength("1", "one\n") + "\n" + kSeparator + WithLength(body) +
                        "\n" + kSeparator + "A: 3\n\n",
                    1000),
              ElementsAre(WithLength("1", "one\n"),
                          WithLength(std::to_string(body.size()), "two\n"), "x\n", "A: 3\n"));
}

TEST(MboxLengths, OfAnAttachedMessageDoNotCount) {
  const std::string inner = "B: 1\n\n" + WithLength("1000000", "inner\n");
  EXPECT_THAT(Split(kSeparator + inner + "\n" + kSeparator + "A: 2\n\n", 1000),
              ElementsAre(inner, "A: 2\n"));
}

TEST(MboxLengths, ATruncatedFileGivesTheMessagesBeforeTheCut) {
  const std::string first = WithLength("one\n\n" + kSeparator + "more\n");
  const std::string file =
      kSeparator + first + "\n" + kSeparator + WithLength("two\n") + "\n" + kSeparator + "A: 3\n";
  const std::size_t first_end = kSeparator.size() + first.size();
  for (std::size_t size = kSeparator.size(); size < file.size(); ++size) {
    const std::vector<std::string> whole = Split(file.substr(0, size), 1000);
    EXPECT_EQ(Split(file.substr(0, size), 1), whole) << size;
    std::size_t bytes = 0;
    for (const std::string& message : whole) bytes += message.size();
    EXPECT_LE(bytes, size);
    if (size >= first_end + 1 + kSeparator.size() || size == first_end) {
      EXPECT_EQ(whole.at(0), first) << size;
    }
  }
}

}  // namespace
}  // namespace zqv::cli
