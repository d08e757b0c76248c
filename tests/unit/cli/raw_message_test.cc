#include "cli/raw_message.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "cli/open_multiparts.h"

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

// "depth" or "depth closes" of the delimiter that a line is; empty for none.
std::string Found(const OpenMultiparts& open, std::string_view line) {
  const auto delimiter = open.Find(line);
  if (!delimiter) return {};
  return std::to_string(delimiter->depth) + (delimiter->closes ? " closes" : "");
}

TEST(OpenMultipartsTest, InnermostCounts) {
  OpenMultiparts open;
  EXPECT_EQ(Found(open, "--a"), "");
  open.Push("a");
  open.Push("b");
  open.Push("ab");
  EXPECT_EQ(Found(open, "--ab"), "2");
  EXPECT_EQ(Found(open, "--abc--"), "2");
  EXPECT_EQ(Found(open, "--ab-- \t"), "2 closes");
  EXPECT_EQ(Found(open, "--a"), "0");
  EXPECT_EQ(Found(open, "--a--"), "0 closes");
  EXPECT_EQ(Found(open, "--b"), "1");
  for (const char* line : {"", "-", "--", "-- a", " --a", "-a", "--c", "a"}) {
    EXPECT_EQ(Found(open, line), "") << line;
  }
  open.Pop();
  EXPECT_EQ(Found(open, "--ab"), "0");
}

TEST(OpenMultipartsTest, OneBoundaryMayBeOpenTwice) {
  OpenMultiparts open;
  open.Push("a");
  open.Push("b");
  open.Push("a");
  open.Push("c");
  EXPECT_EQ(Found(open, "--a"), "2");
  open.Pop();
  open.Pop();
  EXPECT_EQ(Found(open, "--a"), "0");
  EXPECT_EQ(Found(open, "--c"), "");
}

TEST(OpenMultipartsTest, LongBoundariesOfOuterOnesAreWholeLines) {
  const std::string longest(71, 'x');  // one more than is allowed
  OpenMultiparts open;
  open.Push(longest);
  EXPECT_EQ(Found(open, "--" + longest + "y"), "0");
  open.Push("b");
  EXPECT_EQ(Found(open, "--" + longest), "0");
  EXPECT_EQ(Found(open, "--" + longest + "-- "), "0 closes");
  EXPECT_EQ(Found(open, "--" + longest + "y"), "");
}

TEST(RawMessageTest, TellsLinesWhateverEndsThem) {
  for (const std::string_view end : {"\n"sv, "\r\n"sv, "\r"sv, "\n\r"sv}) {
    std::string text;
    for (const char* line : {"A: b", " c", "D : e", ":f", " g", "", "body"}) {
      text.append(line).append(end);
    }
    const RawMessage message = ReadRawMessage(text);
    ASSERT_EQ(message.fields.size(), 2U);
    EXPECT_EQ(message.fields[0].name, "A");
    EXPECT_EQ(message.fields[0].value, " b" + std::string(end) + " c");
    EXPECT_EQ(message.fields[1].name, "D");
    EXPECT_EQ(message.fields[1].value, " e");
    EXPECT_EQ(message.fields[1].line, 3U);
    ASSERT_EQ(message.parts.size(), 1U);
    EXPECT_EQ(message.parts[0].header_end, HeaderEnd::kBlankLine);
    EXPECT_EQ(message.parts[0].end_line, 6U);
    EXPECT_EQ(message.parts[0].lone_cr_line, kNoLine);
  }
}

TEST(RawMessageTest, TellsWhatEndsAHeader) {
  const auto end_of = [](std::string_view text) {
    return ReadRawMessage(text).parts[0].header_end;
  };
  EXPECT_EQ(end_of(""), HeaderEnd::kMessageEnd);
  EXPECT_EQ(end_of("A: b\n"), HeaderEnd::kMessageEnd);
  EXPECT_EQ(end_of("A: b\n\n"), HeaderEnd::kBlankLine);
  EXPECT_EQ(end_of("\n"), HeaderEnd::kBlankLine);
  EXPECT_EQ(end_of("A: b\nc\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of(" A: b\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of("A b: c\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of("\xEF\xBB\xBF\n"), HeaderEnd::kBlankLine);
}

constexpr std::string_view kNested =
    "Content-Type: multipart/mixed; boundary=o\n\n--o\n"                        // 0
    "Content-Type: message/rfc822\n\n"                                          // 1
    "Content-Type: Multipart/x;\n boundary=\"i\"\n\n--i\n\none\n--i\n\ntwo\n";  // 1.1 and its two

TEST(RawMessageTest, ListsPartsInTheLibrarysOrder) {
  const RawMessage message = ReadRawMessage(std::string(kNested) + "--i--\n--o\n\nthree\n--o--\n");
  ASSERT_EQ(message.parts.size(), 6U);
  EXPECT_EQ(message.known, 6U);
  EXPECT_EQ(message.rest, RestOfParts::kNone);
  EXPECT_TRUE(message.parts[0].is_closed);
  EXPECT_EQ(message.parts[1].kind, RawKind::kMessage);
  EXPECT_FALSE(message.parts[1].is_message);
  EXPECT_TRUE(message.parts[2].is_message);
  EXPECT_EQ(message.parts[2].line, 6U);
  EXPECT_EQ(message.parts[2].boundary, "i");
  EXPECT_TRUE(message.parts[2].is_closed);
}

TEST(RawMessageTest, KnowsNothingBehindAnOpenMultipart) {
  const RawMessage message = ReadRawMessage(std::string(kNested) + "--o\n\nthree\n--o--\n");
  ASSERT_EQ(message.parts.size(), 6U);
  EXPECT_EQ(message.known, 5U);
  EXPECT_EQ(message.rest, RestOfParts::kLost);
  EXPECT_FALSE(message.parts[2].is_closed);
  EXPECT_EQ(message.parts[2].last_line, 15U);
  EXPECT_TRUE(message.parts[0].is_closed);
}

TEST(RawMessageTest, AttachedMessageBeginsBehindABlankLineOnly) {
  const RawMessage message = ReadRawMessage("Content-Type: message/rfc822\nno field\nA: b\n\n");
  EXPECT_EQ(message.parts.size(), 1U);
  EXPECT_EQ(message.rest, RestOfParts::kUnknown);
}

TEST(RawMessageTest, NothingBeginsWithTheLastLine) {
  const RawMessage message =
      ReadRawMessage("Content-Type: multipart/mixed; boundary=o\n\n--o\n\none\n--o\n");
  EXPECT_EQ(message.parts.size(), 2U);
  EXPECT_FALSE(message.parts[0].is_closed);
}

}  // namespace
}  // namespace zqv::cli
