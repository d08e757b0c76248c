#include "text/html_to_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <vector>

#include "tests/reference/reference_html.h"
#include "tests/support/property.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/text/tables.h"
#include "text/html_entities.h"

namespace zqv::text {
namespace {

using test::Logged;

// The plain text of `html`, in ASCII. A code point that is not ASCII is shown as "{hexadecimal}".
std::string Text(const std::string& html) {
  std::string shown;
  for (const char32_t c : HtmlToPlainText(std::u32string(html.begin(), html.end()))) {
    if (c < 0x80) {
      shown += static_cast<char>(c);
    } else {
      char number[16];
      std::snprintf(number, sizeof number, "{%X}", static_cast<unsigned>(c));
      shown += number;
    }
  }
  return shown;
}

std::vector<std::pair<std::string, char32_t>> References() {
  std::vector<std::pair<std::string, char32_t>> references;
  for (const auto& [name, number] : test::ReadTable("html_entities.tsv", 10))
    references.emplace_back(name, number);
  return references;
}

TEST(HtmlTags, ParagraphsGiveALineBreakOnBothSides) {
  EXPECT_EQ(Text("<p>a</p><p>b</p>"), "\ra\r\rb\r");
}

TEST(HtmlTags, NestedListsAreIndented) {
  EXPECT_EQ(Text("<ul><li>a<ul><li>b</li></ul></li></ul>"), "* a\r  * b");
}

TEST(HtmlTags, ThirdLevelIsIndentedByFour) { EXPECT_EQ(Text("<ol><ul><ol><li>x"), "    * x"); }

TEST(HtmlTags, BulletWithoutAListHasNoIndent) { EXPECT_EQ(Text("<li>a<li>b"), "* a\r* b"); }

TEST(HtmlTags, ListDepthDoesNotFallBelowZero) {
  EXPECT_EQ(Text("</ul></ol></ul><ul><li>a<ul><li>b</ul></ul></ul><li>c"), "* a\r  * b\r* c");
}

TEST(HtmlTags, DeepListsAreIndented) {
  std::string html;
  for (int i = 0; i < 500; ++i) html += "<ul>";
  for (int i = 0; i < 500; ++i) html += "<li>";
  // The first item has no line break. Each item has 2 * 499 spaces, the bullet and a space.
  EXPECT_EQ(Text(html).size(), 500u * 1001u - 1u);
}

TEST(HtmlTags, HostileListsAreNotIndentedWithoutEnd) {
  std::string html;
  for (int i = 0; i < 50'000; ++i) html += "<ul>";
  for (int i = 0; i < 50'000; ++i) html += "<li>";
  const std::string text = Text(html);
  EXPECT_LT(text.size(), html.size() + 5'000'000);
  EXPECT_EQ(text.substr(text.size() - 6), "\r* \r* ");
}

// Bullets on level 2,049 are indented by 4,096 spaces, and there are 2^22 spaces for all of them.
TEST(HtmlTags, BulletsAreIndentedByFourMillionSpaces) {
  std::string html;
  for (int i = 0; i < 2049; ++i) html += "<ul>";
  for (int i = 0; i < 1025; ++i) html += "<li>";
  std::string expected;
  for (int i = 0; i < 1024; ++i) expected += std::string(4096, ' ') + "* \r";
  EXPECT_TRUE(Text(html) == expected + "* ");
}

TEST(HtmlTags, CellsAreSeparatedByATab) { EXPECT_EQ(Text("<td>a</td><td>b</td>"), "a\tb"); }

TEST(HtmlTags, RowsOfATable) {
  EXPECT_EQ(Text("<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>"),
            "\ra\tb\rc\r\r");
}

TEST(HtmlTags, OpeningRowGivesNothing) { EXPECT_EQ(Text("a<tr>b"), "ab"); }

TEST(HtmlTags, DivEndGivesASpaceUnlessAtLineStart) {
  EXPECT_EQ(Text("<div>a</div><div>b</div>"), "a b ");
  EXPECT_EQ(Text("<div></div>a"), "a");
  EXPECT_EQ(Text("a<br></div>b"), "a\rb");
}

TEST(HtmlTags, BreakGivesALineBreak) {
  EXPECT_EQ(Text("a<br>b<BR/>c<br />d</br>e"), "a\rb\rc\rde");
}

TEST(HtmlTags, HeadingsGiveNoLineBreak) {
  EXPECT_EQ(Text("<h1>Title</h1>"), "Title");
  EXPECT_EQ(Text("<h6>a</h6><h2>b</h2>"), "ab");
}

TEST(HtmlTags, NamesEndAtTheFirstNonLetter) {
  EXPECT_EQ(Text("<p1>a"), "\ra");
  EXPECT_EQ(Text("<br-x>a"), "\ra");
  EXPECT_EQ(Text("< p>a"), "a");
  EXPECT_EQ(Text("</ p>a"), "a");
  EXPECT_EQ(Text("<pp>a"), "a");
}

TEST(HtmlTags, NamesAreMadeOfAllAsciiLetters) {
  for (const char letter : std::string("azAZ"))
    EXPECT_EQ(Text(std::string("<p") + letter + ">a"), "a") << letter;
  for (const char other : std::string("@[`{019"))
    EXPECT_EQ(Text(std::string("<p") + other + ">a"), "\ra") << other;
}

TEST(HtmlTags, LettersOutsideAsciiEndAName) {
  EXPECT_EQ(HtmlToPlainText(U"<p\u00E9>a"), U"\ra");
  EXPECT_EQ(HtmlToPlainText(U"<\u0170>a"), U"a");  // its low byte is a "p"
}

TEST(HtmlTags, CaseOfANameDoesNotMatter) {
  EXPECT_EQ(Text("<P>a</P><ScRiPt>x</sCrIpT>b"), "\ra\rb");
}

TEST(HtmlTags, AttributesAreDropped) {
  EXPECT_EQ(Text("<a href=\"x\" title='&amp;'>link</a>"), "link");
}

TEST(HtmlTags, OpenAnglesNest) {
  EXPECT_EQ(Text("<p<b>x>y"), "\ry");
  EXPECT_EQ(Text("a < b > c"), "a  c");
}

TEST(HtmlTags, CloseAngleAloneIsDropped) { EXPECT_EQ(Text("a > b>c"), "a  bc"); }

TEST(HtmlTags, ATagWithoutEndRunsToTheEnd) {
  EXPECT_EQ(Text("a<b c"), "a");
  EXPECT_EQ(Text("a<"), "a");
  EXPECT_EQ(Text("a</"), "a");
  EXPECT_EQ(Text("a<p"), "a\r");
}

TEST(HtmlTags, DeclarationsAreTags) { EXPECT_EQ(Text("<!DOCTYPE html><?xml?>a<!-b>c"), "ac"); }

TEST(HtmlScript, ContentIsDropped) {
  EXPECT_EQ(Text("a<script type=x>if (a < b && c > d) { p('</p>'); }</script>b"), "ab");
}

TEST(HtmlScript, OtherTagsInsideDoNothing) {
  EXPECT_EQ(Text("<script><p><ul><style></style></p></div></script><li>a"), "* a");
}

TEST(HtmlScript, AnOpeningTagInsideHidesOneCodePoint) {
  EXPECT_EQ(Text("<script><</script>a"), "");
  EXPECT_EQ(Text("<script><x</script>a"), "a");
}

TEST(HtmlScript, AClosingTagInsideHidesOneCodePointBehindItsName) {
  EXPECT_EQ(Text("<script></b</script>a"), "");
  EXPECT_EQ(Text("<script></b></script>a"), "a");
  EXPECT_EQ(Text("<script></<</script>a"), "a");
}

TEST(HtmlScript, RestOfTheClosingTagIsDropped) { EXPECT_EQ(Text("<script>x</script foo>a"), "a"); }

TEST(HtmlScript, CommentInsideIsSkippedWhole) {
  EXPECT_EQ(Text("<script><!-- </script> -->x</script>a"), "a");
}

TEST(HtmlScript, WithoutEndRunsToTheEnd) { EXPECT_EQ(Text("a<script>b"), "a"); }

TEST(HtmlStyle, ContentIsDropped) {
  EXPECT_EQ(Text("a<style>p > b { color: red }\n&amp;</style>b"), "ab");
}

TEST(HtmlStyle, TagsInsideStillCount) { EXPECT_EQ(Text("<style>x<p>y</style>a"), "\ra"); }

TEST(HtmlNoscript, ContentIsDropped) {
  EXPECT_EQ(Text("a<noscript>b &amp; <b>c</b></noscript>d"), "ad");
}

TEST(HtmlNoscript, TagsInsideStillCount) { EXPECT_EQ(Text("<noscript>x<br>y</noscript>a"), "\ra"); }

TEST(HtmlNoscript, LineBreaksOfPreInsideAreDropped) {
  EXPECT_EQ(Text("<pre><noscript>\n</noscript>\n</pre>"), "\r\r");
}

TEST(HtmlComments, AreSkippedWithTheLineBreakBehind) {
  EXPECT_EQ(Text("a<!-- x <p> & -->b"), "ab");
  EXPECT_EQ(Text("<pre>a<!-- x -->\r\nb"), "ab");
  EXPECT_EQ(Text("<pre>a<!-- x -->\nb"), "ab");
  EXPECT_EQ(Text("<pre>a<!-- x -->\rb"), "ab");
}

TEST(HtmlComments, OnlyOneCrAndThenOneLfBehindIsSkipped) {
  EXPECT_EQ(Text("<pre>a<!---->\r\rb"), "a\rb");
  EXPECT_EQ(Text("<pre>a<!---->\n\nb"), "a\rb");
  EXPECT_EQ(Text("<pre>a<!---->\n\rb"), "a\rb");
}

TEST(HtmlComments, PutTheTextAtLineStart) {
  EXPECT_EQ(Text("a<td>b<!----><td>c"), "a\tbc");
  EXPECT_EQ(Text("a<!----></div>b"), "ab");
}

TEST(HtmlComments, EndMarkIsSearchedAfterTheStartMark) {
  EXPECT_EQ(Text("<!-->a-->b"), "b");
  EXPECT_EQ(Text("<!--->a-->b"), "b");
  EXPECT_EQ(Text("<!---->b"), "b");
}

TEST(HtmlComments, WithoutEndRunToTheEnd) {
  EXPECT_EQ(Text("a<!-- b"), "a");
  EXPECT_EQ(Text("a<!-- b --"), "a");
  EXPECT_EQ(Text("a<!--"), "a");
}

TEST(HtmlComments, DoNotChangeTheDepthOfTags) { EXPECT_EQ(Text("<b <!-- > --> x>a"), "a"); }

TEST(HtmlLineBreaks, JoinWordsOutsidePreAndCountOneEachInside) {
  EXPECT_EQ(Text("one\ntwo"), "onetwo");
  EXPECT_EQ(Text("one\r\n two"), "onetwo");
  EXPECT_EQ(Text("one \ntwo"), "one two");
  EXPECT_EQ(Text("<pre>a\r\nb</pre>"), "a\r\rb\r");
  EXPECT_EQ(Text("<pre>a\nb\rc</pre>d\ne"), "a\rb\rc\rde");
}

TEST(HtmlLineBreaks, InATagOfPreAreDropped) { EXPECT_EQ(Text("<pre><b\n>a"), "a"); }

TEST(HtmlLineBreaks, InPrePutTheTextAtLineStart) { EXPECT_EQ(Text("<pre>a\n<td>b"), "a\rb"); }

TEST(HtmlWhiteSpace, RunsBecomeTheirFirst) {
  EXPECT_EQ(Text("a \t  b"), "a b");
  EXPECT_EQ(Text("a\t b"), "a\tb");
  EXPECT_EQ(Text("  a"), " a");
}

TEST(HtmlWhiteSpace, BehindATagIsKept) { EXPECT_EQ(Text("a <b> b</b> c"), "a  b c"); }

TEST(HtmlWhiteSpace, BehindAReferenceIsKept) {
  EXPECT_EQ(Text("a&nbsp; b"), "a{A0} b");
  EXPECT_EQ(Text("&#32; b"), "  b");
}

TEST(HtmlWhiteSpace, CollapsesInPreToo) { EXPECT_EQ(Text("<pre>a  b"), "a b"); }

TEST(HtmlWhiteSpace, IsTheUnicodeProperty) {
  const std::u32string spaces =
      U"\t\v\f \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
      U"\u2028\u2029\u202F\u205F\u3000";
  for (const char32_t c : spaces) {
    const std::u32string html = {U'a', U' ', c, U'b'};
    EXPECT_EQ(HtmlToPlainText(html), U"a b") << static_cast<unsigned>(c);
  }
  std::size_t count = 0;
  for (char32_t c = 1; c < 0x11000; ++c) {
    const std::u32string html = {U'a', U' ', c};
    if (c != U'\n' && c != U'\r' && c != U'<' && c != U'>' && HtmlToPlainText(html) == U"a ")
      ++count;
  }
  EXPECT_EQ(count, spaces.size());
}

TEST(HtmlReferences, NamesAreFound) {
  EXPECT_EQ(Text("&lt;b&gt; &amp; &quot;&apos;"), "<b> & \"'");
  EXPECT_EQ(Text("&euro;&diams;"), "{20AC}{2666}");
}

TEST(HtmlReferences, CaseOfANameMatters) {
  EXPECT_EQ(Text("a&amp;b"), "a&b");
  EXPECT_EQ(Text("a&AMP;b"), "ab");
  EXPECT_EQ(Text("&Auml;&auml;"), "{C4}{E4}");
}

TEST(HtmlReferences, LastOneNeedsNoSemicolon) {
  EXPECT_EQ(Text("a&amp"), "a&");
  EXPECT_EQ(Text("a&#65"), "aA");
}

TEST(HtmlReferences, ABareAmpersandSwallowsTenCodePoints) {
  EXPECT_EQ(Text("AT&T and more"), "ATe");
  EXPECT_EQ(Text("a&<p>12345678"),
            "a78");                 // the ten code points include a tag, which is swallowed too
  EXPECT_EQ(Text("a&b"), "a{A6}");  // "b" begins "brvbar"
}

TEST(HtmlReferences, EightCodePointsOfANameCount) {
  EXPECT_EQ(Text("&thetasym;x"), "{3D1}x");    // eight, and the ";"
  EXPECT_EQ(Text("&thetasymx;y"), "{3D1};y");  // the ninth stands for the ";"
}

TEST(HtmlReferences, AmpersandBeforeSemicolonOrNulIsOrdinary) {
  EXPECT_EQ(Text("a&;b"), "a&;b");
  EXPECT_EQ(Text("a&"), "a&");
  EXPECT_EQ(HtmlToPlainText(std::u32string_view(U"a&\0b", 4)), std::u32string(U"a&\0b", 4));
}

TEST(HtmlReferences, NulEndsAName) {
  EXPECT_EQ(HtmlToPlainText(std::u32string_view(U"&amp\0;b", 7)), U"&;b");
}

TEST(HtmlReferences, NumbersAreRead) {
  EXPECT_EQ(Text("&#65;&#x41;&#0065;"), "AAA");
  EXPECT_EQ(Text("&#8364;&#x20ac;&#x20AC;"), "{20AC}{20AC}{20AC}");
  // Every digit.
  EXPECT_EQ(Text("&#x2f;&#x3a;&#x4b;&#x5c;&#x6d;&#x7e;"), "/:K\\m~");
  EXPECT_EQ(Text("&#x2F;&#x3A;&#x4B;&#x5C;&#x6D;&#x7E;"), "/:K\\m~");
  EXPECT_EQ(Text("&#x0038;&#x0039;&#x31;&#x67;"), "891g");
  EXPECT_EQ(Text("&#90;&#38;&#71;&#52;&#65;"), "Z&G4A");
}

TEST(HtmlReferences, UpperCaseXIsKeptAsText) { EXPECT_EQ(Text("&#X41;"), "&#X41;"); }

TEST(HtmlReferences, ZeroAndNegativeNumbersAreKeptAsText) {
  EXPECT_EQ(Text("&#0;"), "&#0;");
  EXPECT_EQ(Text("&#-65;"), "&#-65;");
  EXPECT_EQ(Text("&#6-5;"), "&#6-5;");
  EXPECT_EQ(Text("&#x-41;"), "&#x-41;");
  EXPECT_EQ(Text("&#x4-1;"), "&#x4-1;");
  EXPECT_EQ(Text("&#x;"), "&#x;");
  EXPECT_EQ(Text("&#x0;"), "&#x0;");
  EXPECT_EQ(Text("&#;"), "&#;");
  EXPECT_EQ(Text("&#"), "&#");
  EXPECT_EQ(Text("&#x"), "&#x");
  EXPECT_EQ(Text("&#foo;"), "&#foo;");
}

TEST(HtmlReferences, AnythingElseEndsANumber) {
  EXPECT_EQ(Text("&#65z;b"), "Ab");
  EXPECT_EQ(Text("&#x41z;b"), "Ab");
}

TEST(HtmlReferences, NumbersBeyond32BitsAreTheLargest) {
  EXPECT_EQ(HtmlToPlainText(U"&#4294967295;"), std::u32string({0xFFFFFFFF, U'9', U'5', U';'}));
  EXPECT_EQ(HtmlToPlainText(U"&#4294967296;"), std::u32string({0xFFFFFFFF, U'9', U'6', U';'}));
  EXPECT_EQ(HtmlToPlainText(U"&#" + std::u32string(50, U'9')),
            static_cast<char32_t>(0xFFFFFFFF) + std::u32string(42, U'9'));
  EXPECT_EQ(Text("&#xFFFFFFFF;"), "{FFFFFFFF}F;");
}

TEST(HtmlReferences, HexadecimalNumbersHaveEightDigits) {
  // Eight digits are read, but the text continues after the eighth code point of the name and one
  // more.
  EXPECT_EQ(Text("&#x0001F600;"), "{1F600}0;");
  EXPECT_EQ(Text("&#x000000411;"), "A11;");
}

TEST(HtmlReferences, DigitsAreReadByTheirLowBits) {
  EXPECT_EQ(HtmlToPlainText(U"&#\u0136\u0135;"), U"A");           // "65"
  EXPECT_EQ(HtmlToPlainText(U"&#x\U00010034\U00010031;"), U"A");  // "41"
  EXPECT_EQ(HtmlToPlainText(U"&#x\u0134\u0131;"),
            U"&#x\u0134\u0131;");  // compared with all 16 bits, neither of these is a digit
}

TEST(HtmlReferences, EndTheStateAtTheStartOfALine) {
  EXPECT_EQ(Text("&Zz;<td>b"), "\tb");
  EXPECT_EQ(Text("&amp;<td>b"), "&\tb");
}

TEST(HtmlEntities, TheFirstRowWithThePrefixWins) {
  EXPECT_EQ(Text("&sigma;&or;&sup;"), "{3C2}{AA}{B2}");  // 962, 170, 178
  EXPECT_EQ(Text("&a;&n;&thinsp;"), "&{A0}{2009}");
}

TEST(HtmlEntities, EachRowIsFoundByItsName) {
  const auto rows = References();
  ASSERT_EQ(rows.size(), kHtmlEntityCount);
  for (std::size_t i = 0; i < kHtmlEntityCount; ++i) {
    EXPECT_EQ(kHtmlEntities[i].name, rows[i].first);
    EXPECT_EQ(kHtmlEntities[i].code_point, rows[i].second) << rows[i].first;
  }
}

TEST(HtmlEntities, ACompleteNameFindsItsRowUnlessAnEarlierOneBeginsWithIt) {
  std::vector<std::string> others;
  for (const HtmlEntity& row : kHtmlEntities) {
    const std::u32string name(row.name.begin(), row.name.end());
    if (FindHtmlEntity(name) != row.code_point) others.emplace_back(row.name);
  }
  // Earlier rows of the table, "sigmaf", "ordf" and "sup2", begin with these names.
  EXPECT_THAT(others, ::testing::UnorderedElementsAre("sigma", "or", "sup"));
}

TEST(HtmlEntities, UnknownNamesAreNotFound) {
  EXPECT_EQ(FindHtmlEntity(U"quotx"), 0u);
  EXPECT_EQ(FindHtmlEntity(U"\u0161mp"), 0u);  // the low byte of the first is an "a"
  EXPECT_EQ(FindHtmlEntity(U"\u007F"), 0u);    // the last ASCII character
  EXPECT_EQ(FindHtmlEntity(U"\u0080"), 0u);
}

TEST(HtmlToPlainText, EmptyHtmlGivesEmptyText) { EXPECT_EQ(Text(""), ""); }

TEST(HtmlToPlainText, AgreesWithTheReference) {
  const auto references = References();
  const std::vector<std::u32string> pieces = {
      U"<",      U">",       U"</",      U"<!--",       U"-->",      U"-",           U"--",
      U"!",      U"script",  U"style",   U"pre",        U"<p>",      U"</p>",        U"noscript",
      U"<ul>",   U"</ul>",   U"<li>",    U"<td>",       U"<tr>",     U"div",         U"table",
      U"br",     U"h1",      U"OL",      U"\r",         U"\n",       U" ",           U"\t",
      U"\u00A0", U"\u2003",  U"&",       U";",          U"&#",       U"x",           U"65",
      U"41",     U"0",       U"&amp;",   U"&sig",       U"&notin",   U"99999999999", U"a",
      U"B",      U"\u0134",  U"\u0170",  U"\U0001F600", U"<script>", U"</script>",   U"<pre>",
      U"</pre>", U"<style>", U"</style>"};
  EXPECT_TRUE(test::Holds("the same text as the reference implementation", [&] {
    const auto chosen =
        *rc::gen::container<std::vector<std::u32string>>(rc::gen::elementOf(pieces));
    std::u32string html;
    for (const std::u32string& piece : chosen) html += piece;
    RC_ASSERT(HtmlToPlainText(html) == reference::HtmlToText(html, references));
  }));
}

TEST(HtmlToPlainText, LogsItsComments) {
  const test::LogCapture log;
  EXPECT_EQ(Text("a<!-- x -->b<!--"), "ab");
  EXPECT_EQ(log.Text(), Logged({"start of comment found 2", "end of comment found 8",
                                "start of comment found 13"}));
}

TEST(HtmlToPlainText, OfAsciiCharactersIsTheSame) {
  EXPECT_TRUE(test::Holds("the same text as of wide characters", [&] {
    const std::string html = *rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("<>&;#/!-x12 \t\r\nplidvscrbyteoun")));
    RC_ASSERT(HtmlToPlainText(html) == HtmlToPlainText(std::u32string(html.begin(), html.end())));
  }));
}

}  // namespace
}  // namespace zqv::text
