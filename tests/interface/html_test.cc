// The result of the shared method HTMLToPlainText.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/interface/utf16.h"

namespace zqv::interface_test {
namespace {

std::string TextOf(const Value& html) {
  return Show(CallShared("MimeEmailZQV", "HTMLToPlainText", html));
}

struct HtmlRow {
  const char* name;
  std::string_view html;
  const char* text;  // in UTF-8, as all results are; null means nil
};

void PrintTo(const HtmlRow& row, std::ostream* out) { *out << row.name; }

class HtmlOf : public InterfaceTest, public ::testing::WithParamInterface<HtmlRow> {};

TEST_P(HtmlOf, GivesItsText) {
  Start();
  const HtmlRow& row = GetParam();
  const std::string shown = row.text != nullptr ? std::string("0x8000100 ") + row.text : "nil";
  EXPECT_EQ(TextOf(MakeString(row.html)), shown);
  // HTML in ASCII is tested in UTF-16 too.
  const std::u16string wide(row.html.begin(), row.html.end());
  EXPECT_EQ(TextOf(MakeUtf16(wide)), shown);
}

std::string NameOfRow(const ::testing::TestParamInfo<HtmlRow>& row) { return row.param.name; }

// Tags and white space.
constexpr HtmlRow kTags[] = {
    {"TwoParagraphs", "<p>a</p><p>b</p>", "\ra\r\rb\r"},
    {"NestedLists", "<ul><li>a<ul><li>b</li></ul></li></ul>", "* a\r  * b"},
    {"TwoItems", "<ol><li>a</li><li>b</li></ol>", "* a\r* b"},
    {"TwoCells", "<td>a</td><td>b</td>", "a\tb"},
    {"RowsOfATable", "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>",
     "\ra\tb\rc\r\r"},
    {"WordsOnTwoLines", "one\ntwo", "onetwo"},
    {"LineBreakAndSpace", "one\r\n two", "onetwo"},
    {"SpaceAndLineBreak", "one \r\ntwo", "one two"},
    {"PreWithCrLf", "<pre>a\r\nb</pre>", "a\r\rb\r"},
    {"PreWithLf", "<pre>a\nb</pre>c\nd", "a\rb\rcd"},
    {"Heading", "<h1>Title</h1>text", "Titletext"},
    {"LineBreakTags", "a<br>b<BR/>c", "a\rb\rc"},
    {"Divisions", "<div>a</div><div>b</div>", "a b "},
    {"SpaceAfterATag", "a <b> b</b>", "a  b"},
    {"RunOfSpaces", "a \t  b", "a b"},
    {"Attributes", "<a href=\"x\" title='&amp;'>link</a>", "link"},
    {"Script", "a<script>if (x < y) p('</p>');</script>b", "ab"},
    {"Style", "a<style>p > b { color: red }</style>b", "ab"},
    {"Noscript", "a<noscript>x &amp; <b>y</b></noscript>b", "ab"},
    {"Comment", "a<!-- x <p> & -->b", "ab"},
    {"Declaration", "<!DOCTYPE html>a", "a"},
    {"UnterminatedTag", "a<b c", "a"},
    {"UnterminatedComment", "a<!-- b", "a"},
    {"UnterminatedScript", "a<script>b", "a"},
    {"Empty", "", nullptr},
    {"OnlyTags", "<html><body></body></html>", nullptr},
    {"OnlyAComment", "<!-- x -->", nullptr},
    {"OnlyLineBreaks", "\r\n\r\n", nullptr},
};
INSTANTIATE_TEST_SUITE_P(Tags, HtmlOf, ::testing::ValuesIn(kTags), NameOfRow);

// A reference extends to its ";", but at most over eight code points and one more: ten from the "&"
// on. A name finds the first row of the table that begins with it: sigmaf 962, ordf 170, sup2 178.
constexpr HtmlRow kReferences[] = {
    {"Ampersand", "a&amp;b", "a&b"},
    {"AmpersandInUpperCase", "a&AMP;b", "ab"},
    {"AmpersandAtTheEnd", "a&amp", "a&"},
    {"BareAmpersand", "AT&T and more", "ATe"},
    {"AmpersandAndSemicolon", "a&;b", "a&;b"},
    {"Euro", "&euro;", "\xE2\x82\xAC"},
    {"Prefixes", "&sigma; &or; &sup;", "\xCF\x82 \xC2\xAA \xC2\xB2"},
    {"Decimal", "&#65;&#8364;", "A\xE2\x82\xAC"},
    {"Hexadecimal", "&#x41;&#x20ac;&#x20AC;", "A\xE2\x82\xAC\xE2\x82\xAC"},
    {"UpperCaseX", "&#X41;", "&#X41;"},
    {"Zero", "&#0;", "&#0;"},
    {"HexadecimalZero", "&#x0;", "&#x0;"},
    {"Negative", "&#-65;", "&#-65;"},
    {"NoDigits", "&#;", "&#;"},
    {"NumberSignAtTheEnd", "a&#", "a&#"},
};
INSTANTIATE_TEST_SUITE_P(References, HtmlOf, ::testing::ValuesIn(kReferences), NameOfRow);

// Halves of surrogate pairs are dropped, and a number above U+10FFFF becomes U+FFFD; the rest of
// the text stays. A number of more than 32 bits is not cut to its low bits: 4294967361 is 2^32 + 65
// and 18446744073709551681 is 2^64 + 65, and 65 is "A".
constexpr HtmlRow kCodePoints[] = {
    {"Pair", "a&#x1F600;b&#128512;",
     "a\xF0\x9F\x98\x80"
     "b\xF0\x9F\x98\x80"},
    {"Last", "&#x10FFFF;", "\xF4\x8F\xBF\xBF"},
    {"OneBeyond", "a&#x110000;b&#1114112;c",
     "a\xEF\xBF\xBD"
     "b\xEF\xBF\xBD"
     "c"},
    {"FirstHalf", "a&#xD800;b", "ab"},
    {"SecondHalf", "a&#xDFFF;b&#57343;", "ab"},
    {"TwoHalves", "a&#xD83D;&#xDE00;b", "ab"},
    {"OnlyAHalf", "&#xD800;", nullptr},
    {"ThirtyTwoBits", "a&#xFFFFFFFF;b",
     "a\xEF\xBF\xBD"
     "F;b"},
    {"ThirtyTwoBitsInDecimal", "&#4294967295;",
     "\xEF\xBF\xBD"
     "95;"},
    {"MoreThanThirtyTwoBits", "&#4294967361;",
     "\xEF\xBF\xBD"
     "61;"},
    {"MoreThanSixtyFourBits", "&#18446744073709551681;",
     "\xEF\xBF\xBD"
     "073709551681;"},
};
INSTANTIATE_TEST_SUITE_P(CodePoints, HtmlOf, ::testing::ValuesIn(kCodePoints), NameOfRow);

class Html : public InterfaceTest {};

TEST_F(Html, NilAndEmptyGiveNil) {
  Start();
  EXPECT_EQ(TextOf(standin::ToValue(nullptr)), "nil");
  for (const abi::Encoding encoding :
       {abi::kUtf8, abi::kAscii, abi::kUtf16, abi::kUtf32, abi::kMacRoman, abi::kUnknownEncoding}) {
    EXPECT_EQ(TextOf(standin::MakeEmptyString(encoding)), "nil") << encoding;
  }
}

// Each string is "<p>", an e with acute accent, and the reference for the euro sign.
TEST_F(Html, InHostStringsOfAnyEncoding) {
  Start();
  const String kTexts[] = {
      MakeString("<p>\xC3\xA9&euro;", abi::kUtf8),
      MakeString("<p>\xC3\xA9&euro;", abi::kAscii),  // bytes that are not ASCII, labelled ASCII
      MakeString("<p>\xE9&euro;", abi::kIsoLatin1),
      MakeString("<p>\xE9&euro;", abi::kWindowsLatin1),
      MakeString("<p>\x8E&euro;", abi::kMacRoman),
      MakeString("<p>\x8E&euro;", abi::kUnknownEncoding),
      MakeUtf16(u"<p>\u00E9&euro;"),
      MakeString({"\0<\0p\0>\0\xE9\0&\0#\08\0003\0006\0004\0;", 22}, abi::kUtf16BigEndian),
      MakeString({"<\0p\0>\0\xE9\0&\0#\08\0003\0006\0004\0;\0", 22}, abi::kUtf16LittleEndian),
  };
  for (const String& text : kTexts) {
    const std::string bytes(text.bytes());
    EXPECT_EQ(TextOf(text), "0x8000100 \r\xC3\xA9\xE2\x82\xAC") << text.encoding();
    EXPECT_EQ(text.bytes(), bytes) << "the application's string does not change";
  }
}

TEST_F(Html, InUtf32OfEitherByteOrder) {
  Start();
  EXPECT_EQ(TextOf(MakeString({"a\0\0\0\x00\xF6\x01\0", 8}, abi::kUtf32LittleEndian)),
            "0x8000100 a\xF0\x9F\x98\x80");
  EXPECT_EQ(TextOf(MakeString({"\0\0\0a\0\x01\xF6\x00", 8}, abi::kUtf32BigEndian)),
            "0x8000100 a\xF0\x9F\x98\x80");
}

TEST_F(Html, OfUnknownEncodingIsAlwaysReadAsMacRoman) {
  Start();
  // In Mac Roman C3 is the square root and A9 the copyright sign.
  EXPECT_EQ(TextOf(MakeString("\xC3\xA9", abi::kUnknownEncoding)),
            "0x8000100 \xE2\x88\x9A\xC2\xA9");
  EXPECT_EQ(TextOf(MakeString("<b>plain</b>", abi::kUnknownEncoding)), "0x8000100 plain");
}

TEST_F(Html, TextOutsideTheFirstPlane) {
  Start();
  EXPECT_EQ(TextOf(MakeString("<b>\xF0\x9F\x98\x80</b>")), "0x8000100 \xF0\x9F\x98\x80");
  EXPECT_EQ(TextOf(MakeUtf16(u"<b>\U0001F600</b>")), "0x8000100 \xF0\x9F\x98\x80");
}

// The text before the first byte that is not UTF-8 is kept.
TEST_F(Html, InBadUtf8EndsThere) {
  Start();
  EXPECT_EQ(TextOf(MakeString("<b>ab\xC3(cd</b>")), "0x8000100 ab");
  EXPECT_EQ(TextOf(MakeString("ab\xC3")), "0x8000100 ab");
  EXPECT_EQ(TextOf(MakeString("\xE9 x")), "nil");
}

TEST_F(Html, ByteOrderMarksAreDropped) {
  Start();
  EXPECT_EQ(TextOf(MakeString("\xEF\xBB\xBF<p>a\xEF\xBB\xBF"
                              "b")),
            "0x8000100 \rab");
  EXPECT_EQ(TextOf(MakeUtf16(u"\uFEFF<p>a\uFEFFb")), "0x8000100 \rab");
}

// White space only gives one space. A no-break space is white space too.
TEST_F(Html, WhiteSpaceAloneIsText) {
  Start();
  EXPECT_EQ(TextOf(MakeString("   ")), "0x8000100  ");
  EXPECT_EQ(TextOf(MakeString("a \xC2\xA0\xE2\x80\x83 b")), "0x8000100 a b");
}

TEST_F(Html, OfAMessageBecomesItsPlainText) {
  Start();
  const auto plain_text = [](const std::string& charset, const std::string& html) {
    return ShowProperty(Parse("Content-Type: text/html" + charset + "\n\n" + html), "PlainText");
  };
  EXPECT_EQ(plain_text("; charset=iso-8859-1", "<p>Caf\xE9</p>"), "0x8000100 \rCaf\xC3\xA9\r");
  EXPECT_EQ(plain_text("; charset=utf-8", "Caf\xC3\xA9 &#xD800;"), "0x8000100 Caf\xC3\xA9 ");
  EXPECT_EQ(plain_text("", "Caf\x8E"), "0x8000100 Caf\xC3\xA9")
      << "Mac Roman, because the bytes are not UTF-8";
  EXPECT_EQ(plain_text("; charset=x-none", "Caf\x8E"), "0x8000100 Caf\xC3\xA9");
  EXPECT_EQ(plain_text("", "<p"), "0x8000100 \r");
  EXPECT_EQ(plain_text("", "<b></b>"), "nil");
}

}  // namespace
}  // namespace zqv::interface_test
