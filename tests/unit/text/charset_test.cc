#include "text/charset.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <string>

#include "tests/reference/reference_charset.h"
#include "tests/support/property.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/text/tables.h"

namespace zqv::text {
namespace {

using test::Logged;

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

TEST(Charset, KnowsAllNamesOfTheTable) {
  const auto rows = test::ReadTable("charsets.tsv", 16);
  ASSERT_EQ(rows.size(), 119u);
  for (const auto& [name, encoding] : rows) {
    EXPECT_EQ(GetEncodingValue(name), encoding) << name;
    EXPECT_EQ(GetEncodingValue(Upper(name)), encoding) << name;
    EXPECT_EQ(GetEncodingValue(Lower(name)), encoding) << name;
  }
}

TEST(Charset, NamesDifferByMoreThanCase) {
  std::map<std::string, int> count;
  for (const auto& row : test::ReadTable("charsets.tsv", 16)) ++count[Lower(row.first)];
  EXPECT_EQ(count.size(), 119u);
}

TEST(Charset, KeepsTheUnusualRows) {
  EXPECT_EQ(GetEncodingValue("ASAX341963"), 0x0600u);
  EXPECT_EQ(GetEncodingValue("TIS-620"), GetEncodingValue("ISO-8859-11"));
  EXPECT_EQ(GetEncodingValue("TIS-620"), 0x020Bu);
  for (const char* name : {"x-user-defined", "X-UNKNOWN", "unknown", "unknown-8bit", "0"})
    EXPECT_EQ(GetEncodingValue(name), 0x0201u) << name;
}

TEST(Charset, UsualSpellingsOfUtf8) {
  for (const char* name :
       {"UTF-8", "utf_8", "\"utf-8\"", " utf 8 ", "u.t.f.8", "\tUTF-8\r\n", "utf\xC3-8"})
    EXPECT_EQ(GetEncodingValue(name), 0x08000100u) << name;
}

TEST(Charset, UsualSpellingsOfOthers) {
  EXPECT_EQ(GetEncodingValue("iso-8859-1"), 0x0201u);
  EXPECT_EQ(GetEncodingValue("windows-1252"), 0x0500u);
  EXPECT_EQ(GetEncodingValue("CP1252"), 0x0500u);
  EXPECT_EQ(GetEncodingValue("\"ISO-8859-15\""), 0x020Fu);
  EXPECT_EQ(GetEncodingValue("KOI8-R"), 0x0A02u);
  EXPECT_EQ(GetEncodingValue("ANSI_X3.4-1968"), 0x0600u);
}

TEST(Charset, UnknownAndEmptyNames) {
  EXPECT_EQ(GetEncodingValue("foo"), 0xFFFFu);
  EXPECT_EQ(GetEncodingValue(""), 0xFFFFu);
  EXPECT_EQ(GetEncodingValue("utf88"), 0xFFFFu);
  EXPECT_EQ(GetEncodingValue("utf"), 0xFFFFu);
  EXPECT_EQ(GetEncodingValue("binary"), 0xFFFFu);  // a row of its own
}

TEST(Charset, BinaryIsKnownAlthoughItsValueIsTheUnknownOne) {
  const test::LogCapture log;
  EXPECT_EQ(GetEncodingValue("binary"), 0xFFFFu);
  EXPECT_EQ(FindCharset("binary"), 0xFFFFu);
  EXPECT_EQ(log.Text(), "");
}

TEST(Charset, NamesOutsideTheTableAreNotFound) {
  EXPECT_EQ(FindCharset("f-o o"), std::nullopt);
  EXPECT_EQ(FindCharset(""), std::nullopt);
  EXPECT_EQ(FindCharset("utf-8"), 0x08000100u);
}

TEST(Charset, LogsTheNormalisedName) {
  const test::LogCapture log;
  EXPECT_EQ(GetEncodingValue("x-Foo_1.2"), 0xFFFFu);
  EXPECT_EQ(GetEncodingValue(""), 0xFFFFu);
  EXPECT_EQ(log.Text(), Logged({"unknown charset xFoo12", "unknown charset "}));
}

TEST(NormaliseCharsetName, DropsBlanksControlsAndPunctuation) {
  EXPECT_EQ(NormaliseCharsetName(" a-b.c_d\te\x1F"
                                 "f\x80g\xFFh"),
            "abcdefgh");
  EXPECT_EQ(NormaliseCharsetName(std::string("a\0b", 3)), "ab");
}

TEST(NormaliseCharsetName, KeepsTheRestAsItIs) {
  EXPECT_EQ(NormaliseCharsetName("aZ09!#'()*+,/:;<=>?@[\\]^`{|}~\x7F"),
            "aZ09!#'()*+,/:;<=>?@[\\]^`{|}~\x7F");
}

TEST(NormaliseCharsetName, SecondQuoteEndsIt) {
  EXPECT_EQ(NormaliseCharsetName("\"utf-8\" x"), "utf8");
  EXPECT_EQ(NormaliseCharsetName("a\"b\"c"), "ab");
  EXPECT_EQ(NormaliseCharsetName("\"\"a"), "");
}

TEST(NormaliseCharsetName, FirstQuoteEndsItBehindSixCharacters) {
  EXPECT_EQ(NormaliseCharsetName("abcdef\"g"), "abcdef");
  EXPECT_EQ(NormaliseCharsetName("abcde\"f"), "abcdef");
  EXPECT_EQ(NormaliseCharsetName("-ab-cde-\"f"),
            "abcdef");  // five characters are kept before the quote
}

TEST(NormaliseCharsetName, AgreesWithTheReference) {
  EXPECT_TRUE(test::Holds("the same name as the reference implementation", [] {
    const std::string name = *rc::gen::container<std::string>(
        rc::gen::weightedOneOf<char>({{3, rc::gen::inRange('a', 'e')},
                                      {2, rc::gen::elementOf(std::string("\"-._ \x7F\x80"))},
                                      {1, rc::gen::arbitrary<char>()}}));
    RC_ASSERT(NormaliseCharsetName(name) == reference::NormaliseCharset(name));
  }));
}

}  // namespace
}  // namespace zqv::text
