#include "cli/message_source.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;
using mime::HeaderEnd;
using mime::PartKind;

TEST(MessageSource, NumbersLinesWithAnyLineEnd) {
  for (const std::string_view end : {"\n"sv, "\r\n"sv, "\r"sv, "\n\r"sv}) {
    std::string text;
    for (const char* line : {"A: b", " c", "D : e", ":f", " g", "", "body"}) {
      text.append(line).append(end);
    }
    const MessageSource source(text);
    const std::vector<mime::Field>& fields = source.message().fields();
    ASSERT_EQ(fields.size(), 2U);
    EXPECT_EQ(fields[0].name, "A");
    EXPECT_EQ(ValueBytes(fields[0]), " b" + std::string(end) + " c");
    EXPECT_EQ(source.LineOf(fields[0]), 1U);
    EXPECT_EQ(fields[1].name, "D");
    EXPECT_EQ(ValueBytes(fields[1]), " e");
    EXPECT_EQ(source.LineOf(fields[1]), 3U);
    ASSERT_EQ(source.parts().size(), 1U);
    const mime::Part& part = source.parts()[0];
    EXPECT_EQ(part.header_end, HeaderEnd::kEmptyLine);
    EXPECT_EQ(source.lines().At(part.body.data()), 7U);
  }
}

TEST(MessageSource, ReportsWhatEndsAHeader) {
  const auto end_of = [](std::string_view text) {
    return MessageSource(text).parts()[0].header_end;
  };
  EXPECT_EQ(end_of(""), HeaderEnd::kMessageEnd);
  EXPECT_EQ(end_of("A: b\n"), HeaderEnd::kMessageEnd);
  EXPECT_EQ(end_of("A: b"), HeaderEnd::kMessageEnd);
  EXPECT_EQ(end_of("A: b\n\n"), HeaderEnd::kEmptyLine);
  EXPECT_EQ(end_of("\n"), HeaderEnd::kEmptyLine);
  EXPECT_EQ(end_of("A: b\nc\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of("A: b\nc"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of(" A: b\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of("A b: c\n"), HeaderEnd::kOtherLine);
  EXPECT_EQ(end_of("\xEF\xBB\xBF\n"), HeaderEnd::kEmptyLine);
}

// The message, part 1 (an attached message), and part 1.1 with its two parts.
constexpr std::string_view kNested =
    "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
    "Content-Type: message/rfc822\n\n"
    "Content-Type: Multipart/x;\n boundary=\"i\"\n\n--i\n\none\n--i\n\ntwo\n";

TEST(MessageSource, ListsPartsInTheOrderOfTheLibrary) {
  const std::string text = std::string(kNested) + "--i--\n--o\n\nthree\n--o--\n";
  const MessageSource source(text);
  ASSERT_EQ(source.parts().size(), 6U);
  EXPECT_EQ(source.known(), 6U);
  EXPECT_TRUE(source.parts()[0].is_closed);
  EXPECT_EQ(source.parts()[1].kind, PartKind::kMessage);
  EXPECT_EQ(source.parts()[2].parent, 1U);
  EXPECT_EQ(source.LineOf(source.parts()[2]), 6U);
  EXPECT_EQ(source.parts()[2].boundary, "i");
  EXPECT_TRUE(source.parts()[2].is_closed);
}

TEST(MessageSource, ListsLostPartsAfterThoseOfTheLibrary) {
  const std::string text = std::string(kNested) + "--o\n\nthree\n--o--\n";
  const MessageSource source(text);
  ASSERT_EQ(source.parts().size(), 6U);
  EXPECT_EQ(source.known(), 5U);
  EXPECT_FALSE(source.parts()[2].is_closed);
  EXPECT_EQ(source.LineAfter(source.parts()[2]), 15U);
  EXPECT_EQ(source.parts()[5].parent, 0U);
  EXPECT_EQ(source.LineOf(source.parts()[5]), 16U);
  EXPECT_TRUE(source.parts()[0].is_closed);
}

// The line is right for every kind of line end, and for a multipart whose text is empty.
TEST(MessageSource, ReportsTheLineAfterAMultipart) {
  for (const std::string_view end : {"\n"sv, "\r\n"sv, "\r"sv, "\n\r"sv}) {
    std::string text;
    for (const char* line :
         {"Content-Type: multipart/mixed; boundary=o", "", "--o",
          "Content-Type: multipart/mixed; boundary=i", "", "--i", "", "one", "--o--"}) {
      text.append(line).append(end);
    }
    const MessageSource source(text);
    EXPECT_EQ(source.LineAfter(source.parts()[1]), 9U);
  }
  const std::string text =
      "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
      "Content-Type: multipart/mixed; boundary=i\n\n--o--\n";
  const MessageSource source(text);
  EXPECT_EQ(source.LineAfter(source.parts()[1]), 6U);
}

TEST(MessageSource, OpenMultipartEndsWithTheMessage) {
  for (const char* end : {"", "\n--o", "\n--o\n", "\n--o\n\ntwo"}) {
    const std::string text =
        "Content-Type: multipart/mixed; boundary=o\n\n--o\n\none" + std::string(end);
    const MessageSource source(text);
    EXPECT_FALSE(source.parts()[0].is_closed) << end;
    EXPECT_EQ(source.LineAfter(source.parts()[0]), kNoLine) << end;
  }
}

TEST(MessageSource, LastLineNeedsNoLineEnd) {
  const std::string text = "Content-Type: multipart/mixed; boundary=o\n\n--o\n\none\n--o--";
  const MessageSource source(text);
  EXPECT_TRUE(source.parts()[0].is_closed);
}

TEST(MessageSource, ABoundaryOnTheLastLineBeginsNoPart) {
  for (const char* end : {"", "\n"}) {
    const std::string text =
        std::string("Content-Type: multipart/mixed; boundary=o\n\n--o\n\none\n--o") + end;
    const MessageSource source(text);
    EXPECT_EQ(source.parts().size(), 2U);
    EXPECT_FALSE(source.parts()[0].is_closed);
  }
}

TEST(MessageSource, MessageBeyondTheLimitsThrows) {
  std::string text = "Content-Type: multipart/mixed; boundary=o\n\n";
  for (int i = 0; i < 10'001; ++i) text += "--o\n\n";
  EXPECT_THROW(MessageSource{text}, std::runtime_error);
}

// The boundary line found in the header of the last part; empty when there is none.
std::string_view LastFound(const MessageSource& source) {
  return BoundariesInHeaders(source).back();
}

TEST(BoundariesInHeaders, AreThoseOfAllMultipartsAround) {
  const std::string nested =
      "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
      "Content-Type: multipart/mixed; boundary=i\n\n--i\n";
  for (const char* line : {"--i", "--o", "--i--", "--o-- ", "--o: x", "--ix", "--o x"}) {
    const std::string text = nested + "A: b\n" + line + "\n\ntext\n";
    const MessageSource source(text);
    EXPECT_EQ(LastFound(source), line);
    EXPECT_EQ(source.lines().At(LastFound(source).data()), 8U);
  }
  for (const char* line : {"--", "--c", " --o", "-o", "o", "X: --o"}) {
    const std::string text = nested + "A: b\n" + line + "\n\ntext\n";
    const MessageSource source(text);
    EXPECT_EQ(LastFound(source), "") << line;
  }
}

TEST(BoundariesInHeaders, FirstLineCounts) {
  const MessageSource source(
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nA: b\n--o: 1\n--o: 2\n--o--");
  EXPECT_EQ(LastFound(source), "--o: 1");
}

// A boundary line counts in the headers inside its multipart only: not in the multipart's own
// header, and not in headers after it.
TEST(BoundariesInHeaders, OnlyOfMultipartsThatAreOpen) {
  const MessageSource own("Content-Type: multipart/mixed; boundary=o\n--o\n\ntext\n");
  EXPECT_EQ(LastFound(own), "");
  const MessageSource behind(
      "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
      "Content-Type: multipart/mixed; boundary=i\n\n--i--\n--o\nA: b\n--i\n\ntext\n--o--\n");
  EXPECT_EQ(LastFound(behind), "");
}

TEST(BoundariesInHeaders, OneBoundaryMayBeOpenTwice) {
  const MessageSource source(
      "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
      "Content-Type: multipart/mixed; boundary=o\n\n--o--\n--o\nA: b\n--o\n\ntext\n");
  EXPECT_EQ(LastFound(source), "--o");
}

}  // namespace
}  // namespace zqv::cli
