// Each fault of mimetic that third_party/mimetic/patches/ fixes, shown to be gone. A fault that
// only reads out of bounds is seen by the address sanitizer or the checked standard library.
#include <gtest/gtest.h>
#include <mimetic/mimetic.h>
#include <mimetic/rfc822/datetime.h>
#include <rapidcheck.h>

#include <cctype>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <locale>
#include <string>

namespace {

std::string DecodeRange(const std::string& text) {
  mimetic::Base64::Decoder decoder;
  std::string out;
  decoder.process(text.begin(), text.end(), std::back_inserter(out));
  return out;
}

std::string DecodeByteByByte(const std::string& text) {
  mimetic::Base64::Decoder decoder;
  std::string out;
  auto sink = std::back_inserter(out);
  for (const char c : text) decoder.process(static_cast<unsigned char>(c), sink);
  decoder.flush(sink);
  return out;
}

// '|' is 124, the number of rows of the decoder's table.
TEST(MimeticFaults, Base64DecoderSkipsTheByteJustPastItsTable) {
  EXPECT_EQ(DecodeRange("QU|JD||||"), "ABC");
  EXPECT_EQ(DecodeByteByByte("QU|JD||||"), "ABC");
}

TEST(MimeticFaults, Base64DecoderSkipsEveryByteAboveItsTable) {
  std::string text = "QUJD";
  for (int byte = 123; byte < 256; ++byte) text += static_cast<char>(byte);
  EXPECT_EQ(DecodeRange(text), "ABC");
  EXPECT_EQ(DecodeByteByByte(text), "ABC");
}

TEST(MimeticFaults, CanonicalOfBlanksIsEmpty) {
  EXPECT_EQ(mimetic::canonical(" "), "");
  EXPECT_EQ(mimetic::canonical("    "), "");
  // Longer than a string keeps in itself, so that the byte before it belongs to nobody.
  EXPECT_EQ(mimetic::canonical(std::string(100, ' ')), "");
}

TEST(MimeticFaults, CanonicalCutsBlanksAndNothingElse) {
  EXPECT_EQ(mimetic::canonical("a"), "a");
  EXPECT_EQ(mimetic::canonical("a "), "a");
  EXPECT_EQ(mimetic::canonical("  ab   "), "ab");
  EXPECT_EQ(mimetic::Mailbox("a@b.c ").domain(), "b.c");
}

TEST(MimeticFaults, DateKeepsTheLastDigitOfItsZoneBeforeABlank) {
  const mimetic::DateTime date("Mon, 1 Jan 2024 10:00:00 +0200 ");
  EXPECT_EQ(date.zone().ordinal(), 200);
}

// The label ends where the text has a NUL; what lies behind it is not the label's.
TEST(MimeticFaults, ATextThatGoesOnBehindALabelIsAnother) {
  const std::string may("May\0x", 5);
  EXPECT_EQ(mimetic::DateTime::Month(may).ordinal(), 0);
  EXPECT_EQ(mimetic::DateTime::Month("May").ordinal(), 5);
  EXPECT_FALSE(mimetic::istring(may) == "May");
  EXPECT_TRUE(mimetic::istring("mAy") == "May");
  EXPECT_FALSE(mimetic::istring("Ma") == "May");
}

// The Turkish small i has another capital letter than I.
TEST(MimeticFaults, NamesCompareAlikeInATurkishLocale) {
  ASSERT_EQ(setenv("LOCPATH", ZQV_LOCALES, 1), 0);
  if (std::setlocale(LC_ALL, "tr_TR.ISO-8859-9") == nullptr) GTEST_SKIP() << "no such locale";
  EXPECT_NE(std::toupper('i'), 'I');
  EXPECT_TRUE(mimetic::istring("title") == "TITLE");
  EXPECT_TRUE(mimetic::istring("title") == std::string("TITLE"));
  EXPECT_EQ(mimetic::DateTime::Month("apriL").ordinal(), 4);
  std::setlocale(LC_ALL, "C");
}

// Digits in groups of three.
class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(MimeticFaults, NumbersHaveNoDigitGroupsOfALocale) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
  const std::string text = mimetic::MimeVersion("1234567.0").str();
  std::locale::global(before);
  EXPECT_EQ(text, "1234567.0");
}

TEST(MimeticFaults, GroupWithoutMembersAndSemicolonIsEmpty) {
  const mimetic::Group group("undisclosed-recipients:");
  EXPECT_EQ(group.name(), "undisclosed-recipients");
  EXPECT_TRUE(group.empty());

  const mimetic::Group cut("G: a@b.c,");
  ASSERT_EQ(cut.size(), 1U);
  EXPECT_EQ(cut.front().mailbox(), "a");

  const mimetic::AddressList list("undisclosed-recipients:");
  ASSERT_EQ(list.size(), 1U);
  EXPECT_TRUE(list.front().isGroup());
}

// Every text of up to `most` of these characters.
template <typename Visit>
void ForEachText(const std::string& characters, std::size_t most, const Visit& visit,
                 const std::string& text = {}) {
  visit(text);
  if (text.size() == most) return;
  for (const char c : characters) ForEachText(characters, most, visit, text + c);
}

// The rules of canonical(), one character after the other from the right: a comment becomes a space
// or nothing, and without blanks those outside of quotes and comments go, up to the first '>'.
std::string SlowCanonical(const std::string& text, bool without_blanks) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  const std::string trimmed = text.substr(first, text.find_last_not_of(' ') - first + 1);
  std::string result;
  std::string comment;  // open since its ')'
  bool in_quotes = false;
  bool in_angles = false;
  int depth = 0;
  for (auto at = trimmed.rbegin(); at != trimmed.rend(); ++at) {
    const char c = *at;
    bool ends_comment = false;
    bool is_dropped = false;
    if (c == '"') {
      in_quotes = !in_quotes;
    } else if (!in_quotes) {
      in_angles = in_angles || c == '>';
      if (c == ')') ++depth;
      if (c == '(') ends_comment = --depth == 0;
      is_dropped = c == ' ' && without_blanks && depth == 0 && !in_angles;
    }
    if (ends_comment) {
      comment.clear();
      if (!without_blanks) result.insert(0, 1, ' ');
    } else if (depth > 0) {
      comment.insert(0, 1, c);
    } else if (!is_dropped) {
      result.insert(0, 1, c);
    }
  }
  return comment + result;
}

TEST(MimeticFaults, CanonicalKeepsItsResultsInLinearTime) {
  const bool agreed = rc::check([] {
    const std::string text =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string("  ab\"()<>@.,\t")));
    RC_ASSERT(mimetic::canonical(text, true) == SlowCanonical(text, true));
    RC_ASSERT(mimetic::canonical(text, false) == SlowCanonical(text, false));
  });
  EXPECT_TRUE(agreed);
}

TEST(MimeticFaults, CanonicalKeepsItsResultsOnEveryShortText) {
  std::size_t different = 0;
  ForEachText(" a\"()>", 7, [&](const std::string& text) {
    if (mimetic::canonical(text, true) != SlowCanonical(text, true)) ++different;
    if (mimetic::canonical(text, false) != SlowCanonical(text, false)) ++different;
  });
  EXPECT_EQ(different, 0U);
}

TEST(MimeticFaults, CanonicalByHand) {
  EXPECT_EQ(mimetic::canonical(" a (x (y) \")\") b ", true), "ab");
  EXPECT_EQ(mimetic::canonical(" a (x (y) \")\") b ", false), "a   b");
  EXPECT_EQ(mimetic::canonical("a b <c d> e f", true), "a b <c d>ef");
  EXPECT_EQ(mimetic::canonical("\"a b\" c", true), "\"a b\"c");
  EXPECT_EQ(mimetic::canonical("a ( b", true), "a (b");
  EXPECT_EQ(mimetic::canonical("a ) b", true), "a )b");
}

}  // namespace
