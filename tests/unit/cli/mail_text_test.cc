#include "cli/mail_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

TEST(UnfoldedTest, MakesOneBlankOfALineBreakAndWhatFollows) {
  EXPECT_EQ(Unfolded(" a\r\n b\n\t  c\rd "), "a b c d");
  EXPECT_EQ(Unfolded("a  b\r\n"), "a  b");
  EXPECT_EQ(Unfolded("\r\n \r\n a"), "a");
  EXPECT_EQ(Unfolded(""), "");
}

TEST(ParametersTest, AreCutAtSemicolons) {
  const std::vector<Parameter> parameters =
      ParametersOf("text/plain; Charset = \"utf-8\" ;x;y=\"a;b\"; z=\"c=d");
  ASSERT_EQ(parameters.size(), 3U);
  EXPECT_EQ(parameters[0].name, "Charset");
  EXPECT_EQ(parameters[0].value, "utf-8");
  EXPECT_EQ(parameters[1].value, "\"a");
  EXPECT_EQ(parameters[2].value, "\"c=d");
  EXPECT_EQ(FindParameter(parameters, "CHARSET"), &parameters[0]);
  EXPECT_EQ(FindParameter(parameters, "x"), nullptr);
}

TEST(TypeTest, StandsBeforeTheParameters) {
  EXPECT_EQ(TypeOf(" text/plain ; a=b"), "text/plain");
  EXPECT_EQ(TypeOf("text/html"), "text/html");
  EXPECT_EQ(TypeOf(""), "");
}

// Shows the encoded words found in a text, each with its charset and encoding, with a vertical bar
// between them.
std::string Words(std::string_view text) {
  std::string joined;
  for (const EncodedWord& word : EncodedWordsOf(text)) {
    if (!joined.empty()) joined += '|';
    joined.append(word.text).append(",").append(word.charset).append(",") += word.letter;
  }
  return joined;
}

TEST(EncodedWordsTest, AreFoundWhereverTheyStand) {
  EXPECT_EQ(Words("a =?utf-8?Q?b?= (=?KOI8-R?b?eA==?=)=?a*en?q?c?="),
            "=?utf-8?Q?b?=,utf-8,Q|=?KOI8-R?b?eA==?=,KOI8-R,b|=?a*en?q?c?=,a*en,q");
  EXPECT_EQ(Words("=?utf-8?Q?two words?="), "=?utf-8?Q?two words?=,utf-8,Q");
}

TEST(EncodedWordsTest, AreNothingElse) {
  for (const std::string_view text :
       {"=?utf-8?X?b?="sv, "=??Q?b?="sv, "=?utf-8?Q?b?"sv, "=?utf-8?Q?b"sv, "=?utf-8?Q"sv, "=?"sv,
        "=?utf-8?QQ?b?="sv, "=?utf 8?Q?b?="sv, "=?utf-8?Q?b\nc?="sv, "=?utf-8?Q?caf\xC3\xA9?="sv,
        "= ?utf-8?Q?b?="sv}) {
    EXPECT_EQ(Words(text), "") << text;
  }
  // Text that looks like the beginning of a word can contain a complete word.
  EXPECT_EQ(Words("=?=?utf-8?X?=?utf-8?Q?b?="), "=?utf-8?Q?b?=,utf-8,Q");
}

TEST(PercentEscapeTest, IsTwoDigits) {
  EXPECT_TRUE(HasPercentEscape("a%2Fb"));
  EXPECT_TRUE(HasPercentEscape("100%%e4"));
  EXPECT_FALSE(HasPercentEscape("100% of it"));
  EXPECT_FALSE(HasPercentEscape("%2"));
  EXPECT_FALSE(HasPercentEscape("%"));
  EXPECT_EQ(Unescaped("a%40b%zz%4"), "a@b%zz%4");
  EXPECT_EQ(Unescaped("%00%fF"), "\0\xFF"sv);
}

TEST(Base64Test, HasWholeGroupsOfItsOwnDigits) {
  for (const std::string_view text :
       {""sv, "eA=="sv, "eHg=\r\n"sv, "eHh4"sv, "eA"sv, "e H\th\r\n4"sv}) {
    EXPECT_EQ(FindBase64Fault(text), Base64Fault::kNone) << text;
  }
  for (const std::string_view text : {"e"sv, "eHh4e"sv, "e==="sv, "eA==e"sv}) {
    EXPECT_EQ(FindBase64Fault(text), Base64Fault::kCut) << text;
  }
  EXPECT_EQ(FindBase64Fault("eA==eA=="), Base64Fault::kMore);
  for (const std::string_view text : {"eA-_"sv, "eA==.\n"sv, "\0"sv, "\xE9"sv}) {
    EXPECT_EQ(FindBase64Fault(text), Base64Fault::kForeign) << text;
  }
}

}  // namespace
}  // namespace zqv::cli
