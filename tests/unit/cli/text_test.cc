#include "cli/text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "abi/encodings.h"
#include "standin/application.h"
#include "standin/host.h"

namespace zqv::cli {
namespace {

TEST(SafeTextTest, KeepsTextAsItIs) {
  EXPECT_EQ(SafeText("a\tb\n\\x41 Zoë 写真 🌸\n", Lines::kMany), "a\tb\n\\x41 Zoë 写真 🌸\n");
}

TEST(SafeTextTest, EscapesControlCharacters) {
  const std::string bytes("\x1B[2J\x07\0\x7F\x1F", 8);
  EXPECT_EQ(SafeText(bytes, Lines::kMany), "\\x1B[2J\\x07\\x00\\x7F\\x1F");
  EXPECT_EQ(SafeText("\xC2\x9B"
                     "2J\xC2\xA0",
                     Lines::kMany),
            "\\x9B"
            "2J\xC2\xA0");
}

TEST(SafeTextTest, EscapesDirectionOverridesOnly) {
  EXPECT_EQ(SafeText("\u202Aa\u202E\u2066\u2069", Lines::kMany),
            "\\u{202A}a\\u{202E}\\u{2066}\\u{2069}");
  EXPECT_EQ(SafeText("\u2029\u202F\u2065\u206A\u200F", Lines::kMany),
            "\u2029\u202F\u2065\u206A\u200F");
}

TEST(SafeTextTest, MakesEveryLineEndALineFeed) {
  EXPECT_EQ(SafeText("a\r\nb\rc\nd\r\r\ne\n\rf\r", Lines::kMany), "a\nb\nc\nd\n\ne\n\nf\n");
}

TEST(SafeTextTest, EscapesLineEndsWithinOneLine) {
  EXPECT_EQ(SafeText("a\r\nb\tc", Lines::kOne),
            "a\\x0D\\x0A"
            "b\tc");
}

TEST(SafeTextTest, EscapesBytesThatAreNoUtf8) {
  EXPECT_EQ(SafeText("caf\xE9 \xC3\xA9 \xED\xA0\x80 \xC0\xAF \xE2\x82", Lines::kMany),
            "caf\\xE9 \xC3\xA9 \\xED\\xA0\\x80 \\xC0\\xAF \\xE2\\x82");
}

class HostTextTest : public testing::Test {
 private:
  const std::unique_ptr<standin::Host> host_ = standin::Host::Start();
};

TEST_F(HostTextTest, IsConvertedByTheHost) {
  EXPECT_EQ(SafeText(standin::MakeString("caf\xE9", abi::kIsoLatin1), Lines::kMany), "café");
  EXPECT_EQ(SafeText(standin::MakeString("caf\x8E", abi::kMacRoman), Lines::kMany), "café");
  EXPECT_EQ(SafeText(standin::String(), Lines::kMany), "");
}

TEST_F(HostTextTest, KeepsOnlyAsciiWhenTheHostCannotConvert) {
  const auto unknown = standin::MakeString("21\xB0 \xC3\xA9\r\n", abi::kUnknownEncoding);
  EXPECT_EQ(SafeText(unknown, Lines::kMany), "21\\xB0 \\xC3\\xA9\n");
}

TEST_F(HostTextTest, KeepsTheValidStartOfBrokenUtf8) {
  EXPECT_EQ(SafeText(standin::MakeString("\xC3\xA9 \xE9", abi::kUtf8), Lines::kMany),
            "\xC3\xA9 \\xE9");
}

TEST_F(HostTextTest, IsTrimmedAsALine) {
  EXPECT_EQ(SafeLine(standin::MakeString(" \t a b \t")), "a b");
  EXPECT_EQ(SafeLine(standin::MakeString("  ")), "");
}

TEST(DisplayWidthTest, CountsColumns) {
  EXPECT_EQ(DisplayWidth(""), 0U);
  EXPECT_EQ(DisplayWidth("abc"), 3U);
  EXPECT_EQ(DisplayWidth("Übersicht"), 9U);
  EXPECT_EQ(DisplayWidth("写真部"), 6U);
  EXPECT_EQ(DisplayWidth("e\u0301"), 1U);
}

TEST(CutToWidthTest, KeepsWhatFits) {
  EXPECT_EQ(CutToWidth("", 0), "");
  EXPECT_EQ(CutToWidth("abc", 3), "abc");
  EXPECT_EQ(CutToWidth("写真", 4), "写真");
}

TEST(CutToWidthTest, EndsWithAnEllipsisInTheLastColumn) {
  EXPECT_EQ(CutToWidth("abcd", 3), "ab…");
  EXPECT_EQ(CutToWidth("写真部", 5), "写真…");
  EXPECT_EQ(CutToWidth("写真部", 4),
            "写…");  // a wide character has two columns and is not cut in half
  EXPECT_EQ(CutToWidth("e\u0301e\u0301e\u0301", 2), "e\u0301…");
  EXPECT_EQ(CutToWidth("abc", 1), "…");
}

TEST(CountedTest, GroupsDigitsAndUsesTheSingularForOne) {
  EXPECT_EQ(Counted(0, "message"), "0 messages");
  EXPECT_EQ(Counted(1, "message"), "1 message");
  EXPECT_EQ(Counted(999, "message"), "999 messages");
  EXPECT_EQ(Counted(1000, "message"), "1,000 messages");
  EXPECT_EQ(Counted(1234567, "message"), "1,234,567 messages");
}

TEST(ByteCountTest, UsesTheSingularForOne) {
  EXPECT_EQ(ByteCount(0), "0 bytes");
  EXPECT_EQ(ByteCount(1), "1 byte");
  EXPECT_EQ(ByteCount(665), "665 bytes");
}

}  // namespace
}  // namespace zqv::cli
