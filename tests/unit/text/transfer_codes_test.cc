// The transfer decoders compared with the reference implementations and with mimetic's decoders:
// every short text over the characters that matter, every pair of bytes, and random long texts cut
// at every position.
#include "text/transfer_codes.h"

#include <gtest/gtest.h>
#include <mimetic/codec/base64.h>
#include <mimetic/codec/qp.h>
#include <rapidcheck.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reference/reference_transfer.h"
#include "tests/support/property.h"

namespace zqv::test {
namespace {

struct CodeRow {
  const char* name;
  std::string_view code;
  std::string_view decoded;
};

void PrintTo(const CodeRow& row, std::ostream* out) { *out << row.name; }

TEST(DecodedBytes, AreNoneWithoutABuffer) { EXPECT_EQ(text::DecodedBytes().view(), ""); }

class Base64 : public ::testing::TestWithParam<CodeRow> {};

TEST_P(Base64, IsDecoded) {
  EXPECT_EQ(text::DecodeBase64(GetParam().code).view(), GetParam().decoded);
}

constexpr CodeRow kBase64[] = {
    // clang-format off
    {"Whole",                    "QUJD",                  "ABC"},
    {"OnePad",                   "QUI=",                  "AB"},
    {"TwoPads",                  "6Q==",                  "\xE9"},
    {"LinesOfBothKinds",         "QU\r\nJD\nREVG\n",      "ABCDEF"},
    {"StrangersAreSkipped",      "Q!U*J D|\x01\xE9",      "ABC"},
    {"UrlAlphabetIsSkipped",     "Q-U_JD",                "ABC"},
    {"NulIsSkipped",             {"QU\0JD", 5},           "ABC"},
    {"ThreeLeftOverAreFlushed",  "QUI",                   "AB"},
    {"TwoLeftOverAreFlushed",    "QUJDQQ",                "ABCA"},
    {"OneLeftOverIsDropped",     "QUJDQ",                 "ABC"},
    {"GoesOnAfterPads",          "QQ==Qg==",              "AB"},
    {"PadInThirdPlaceEndsFour",  "QQ=BQg==",              "AB"},
    // "=" in the first or second place counts as 100, which is 1100100 in binary; six bits of it
    // count, 100100. "Q", "U" and "J" are 010000, 010100 and 001001.
    {"PadInTheFirstPlaceIs100",  "=QUJ",                  "\x91\x05\x09"},
    {"PadInTheSecondPlaceIs100", "Q=UJ",                  "BE\x09"},
    {"NulByte",                  "AEE=",                  {"\0A", 2}},
    {"Empty",                    "",                      ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Texts, Base64, ::testing::ValuesIn(kBase64),
                         [](const auto& row) { return row.param.name; });

class QuotedPrintable : public ::testing::TestWithParam<CodeRow> {};

TEST_P(QuotedPrintable, IsDecoded) {
  EXPECT_EQ(text::DecodeQuotedPrintable(GetParam().code).view(), GetParam().decoded);
}

constexpr CodeRow kQuotedPrintable[] = {
    // clang-format off
    {"Code",                     "caf=E9",      "caf\xE9"},
    {"CodeInLowerCase",          "caf=e9",      "caf\xE9"},
    {"SoftBreak",                "a=\nb",       "ab"},
    {"SoftBreakWithCrLf",        "a=\r\nb",     "ab"},
    {"HardBreak",                "a\nb\n",      "a\nb\n"},
    {"CrLfBecomesLf",            "a\r\nb",      "a\nb"},
    {"BlanksInALine",            "a  b",        "a  b"},
    {"ControlCharactersGo",      "a\x01" "b",   "ab"},
    {"BadCodeStays",             "a=zz",        "a=zz"},
    {"HalfABadCodeStays",        "a=Az",        "a=Az"},
    {"EqualsSign",               "a=3Db",       "a=b"},
    {"LfCrIsOneBreak",           "a\n\rb",      "a\nb"},
    {"LoneCrIsABreak",           "a\rb\r",      "a\nb\n"},
    {"BlanksBeforeCrLfGo",       "a \t\r\nb",   "a\nb"},
    {"BlanksTakeALoneLfAlong",   "a \t\nb",     "ab"},
    {"BlanksInASoftBreak",       "a= \t\r\nb",  "ab"},
    {"EqualsAndBlanksStay",      "a= \tb",      "a= \tb"},
    {"BadCodeKeepsAControl",     "a=\x01z",     "a=\x01z"},
    {"BadCodeKeepsTheNextOne",   "==41",        "==41"},
    {"BadCodeKeepsALineEnd",     "=4\rb",       "=4\rb"},
    {"EqualsAtTheEndStays",      "a=",          "a="},
    {"HalfACodeAtTheEndStays",   "a=4",         "a=4"},
    {"SoftBreakAtTheEndStays",   "a=\n",        "a="},
    {"SoftCrLfAtTheEndGoes",     "a=\r\n",      "a"},
    {"BlankAtTheEndGivesEquals", "a ",          "a="},
    {"TabsAtTheEndGiveATab",     "a\t\t",       "a=\t"},
    {"Empty",                    "",            ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Texts, QuotedPrintable, ::testing::ValuesIn(kQuotedPrintable),
                         [](const auto& row) { return row.param.name; });

std::string AnyTextOf(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece :
       *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces)))
    text += piece;
  return text;
}

template <typename Decoder>
std::string DecodeAsLibrary(std::string_view text) {
  Decoder decoder;
  std::string decoded;
  decoder.process(text.begin(), text.end(), std::back_inserter(decoded));
  return decoded;
}

// Compares a decoder with its reference implementation and with mimetic. Counts the comparisons, so
// that a test can demand that there were some.
class Comparison {
 public:
  using Decode = std::string (*)(std::string_view);
  Comparison(text::DecodedBytes (*decode)(std::string_view), Decode reference, Decode library)
      : decode_(decode), reference_(reference), library_(library) {}

  ::testing::AssertionResult Agree(std::string_view text) {
    ++compared_;
    const text::DecodedBytes decoded = decode_(text);
    const std::string expected = reference_(text);
    if (decoded.view() == expected && library_(text) == expected) {
      return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << ::testing::PrintToString(text) << " gives "
           << ::testing::PrintToString(decoded.view()) << ", the reference gives "
           << ::testing::PrintToString(expected) << ", mimetic gives "
           << ::testing::PrintToString(library_(text));
  }

  // Compares every text of at most `longest` characters out of `alphabet`, each between two fixed
  // texts.
  ::testing::AssertionResult AgreeOnAllTexts(std::string_view alphabet, std::size_t longest,
                                             const std::string& before = "",
                                             const std::string& behind = "") {
    for (std::size_t length = 0; length <= longest; ++length) {
      std::string text(length, alphabet.front());
      do {
        if (const auto agree = Agree(before + text + behind); !agree) return agree;
      } while (Next(text, alphabet));
    }
    return ::testing::AssertionSuccess();
  }

  // Compares every pair of bytes, each between two fixed texts.
  ::testing::AssertionResult AgreeOnAllPairs(const std::string& before, const std::string& behind) {
    for (int pair = 0; pair < 0x10000; ++pair) {
      const std::string bytes = {static_cast<char>(pair / 0x100), static_cast<char>(pair % 0x100)};
      if (const auto agree = Agree(before + bytes + behind); !agree) return agree;
    }
    return ::testing::AssertionSuccess();
  }

  // Compares random texts made of `pieces`, and every prefix of each.
  bool AgreeOnBeginningsOfTextsOf(const std::vector<std::string>& pieces) {
    return Holds("the same bytes as the reference implementation", [&] {
      const std::string text = AnyTextOf(pieces);
      for (std::size_t length = 0; length <= text.size(); ++length) {
        const auto agree = Agree(std::string_view(text).substr(0, length));
        if (!agree) RC_FAIL(agree.message());
      }
    });
  }

  std::uint64_t compared() const { return compared_; }

 private:
  // Changes `text` to the next one in the order of `alphabet`, the last character first. Returns
  // false after the last text of this length.
  static bool Next(std::string& text, std::string_view alphabet) {
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
      const std::size_t next = alphabet.find(*digit) + 1;
      *digit = alphabet[next % alphabet.size()];
      if (next < alphabet.size()) return true;
    }
    return false;
  }

  text::DecodedBytes (*const decode_)(std::string_view);
  const Decode reference_;
  const Decode library_;
  std::uint64_t compared_ = 0;
};

class Base64Comparison : public ::testing::Test {
 protected:
  Comparison comparison_{text::DecodeBase64, reference::DecodeBase64,
                         DecodeAsLibrary<mimetic::Base64::Decoder>};
};

class QuotedPrintableComparison : public ::testing::Test {
 protected:
  Comparison comparison_{text::DecodeQuotedPrintable, reference::DecodeQuotedPrintable,
                         DecodeAsLibrary<mimetic::QP::Decoder>};
};

// clang-format off
const std::string kNul(1, '\0');
const std::vector<std::string> kBase64Pieces = {
    "QWxhZGRpbg==", "QWxh", "+/09", "z", "Q", "=", "==", "\r\n", "\n", " ", "-_", "|", "{",
    "\x7F", "\x80", "\xFF", kNul};
const std::vector<std::string> kQuotedPrintablePieces = {
    "caf=C3=A9", "a line", "=3D", "=e9", "=4", "=zz", "=", "=\r\n", "=\n", "= \t\n", "=\r",
    " ", "\t", "  \r\n", " \n", "\r\n", "\n", "\r", "\n\r", "\x01", "\f",
    "\x7F", "\x80", "\xFF", kNul};
// clang-format on

// 4 characters, at most 9 of them: (4^10 - 1) / 3 texts. Nine characters are two groups of four and
// one more. "n" and "Y" are the bits 100111 and 011000, so that each bit is tested as 0 and as 1.
TEST_F(Base64Comparison, AgreeOnEveryShortTextOfDigitsAndPads) {
  ASSERT_TRUE(comparison_.AgreeOnAllTexts("nY/=", 9));
  EXPECT_EQ(comparison_.compared(), 349525u);
}

// 8 characters, at most 6 of them: (8^7 - 1) / 7 texts. "{" and "|" follow the last letter of the
// alphabet in ASCII. The last byte is above 0x7F.
TEST_F(Base64Comparison, AgreeOnEveryShortTextWithOtherCharacters) {
  ASSERT_TRUE(comparison_.AgreeOnAllTexts("An=\n-{|\xE9", 6));
  EXPECT_EQ(comparison_.compared(), 299593u);
}

TEST_F(Base64Comparison, AgreeOnEveryPairOfBytes) {
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("", ""));
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("QU", "JD"));
  EXPECT_EQ(comparison_.compared(), 2u * 0x10000);
}

// Lines are read many characters at a time, so lines of every length are compared, each once as it
// is and once for every position with a character of another kind there.
TEST_F(Base64Comparison, AgreeOnEveryLengthOfLines) {
  const std::string digits = "QWxhZGRpbjpvcGVuIHNlc2FtZQ+/0189zZ";
  for (const std::string end : {"\r\n", "\n", "\r\r\n"}) {
    for (std::size_t length = 1; length <= 100; ++length) {
      std::string line;
      while (line.size() < length) line += digits[(line.size() * 7 + length) % digits.size()];
      ASSERT_TRUE(comparison_.Agree(line + end + line + end + line));
      for (std::size_t at = 0; at < length; ++at) {
        std::string other = line;
        other[at] = "=-\x80 {"[at % 5];
        ASSERT_TRUE(comparison_.Agree(line + end + other + end + line + end));
      }
    }
  }
  EXPECT_EQ(comparison_.compared(), 3u * (100 + 5050));
}

// Every byte at every position of a long line, between two other lines, and lines of one byte.
TEST_F(Base64Comparison, AgreeOnEveryByteInALine) {
  const std::string whole = "QWxhZGRpbjpvcGVuIHNlc2FtZSB3aXRoIG1l";
  for (int byte = 0; byte < 0x100; ++byte) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
      std::string line = whole;
      line[at] = static_cast<char>(byte);
      ASSERT_TRUE(comparison_.Agree(whole + "\n" + line + "\nQWxh"));
    }
    const std::string only(whole.size(), static_cast<char>(byte));
    ASSERT_TRUE(comparison_.Agree(only + "\n" + whole + "\n" + only + "\nQWxh")) << byte;
  }
  EXPECT_EQ(comparison_.compared(), 256u * 37);
}

TEST_F(Base64Comparison, AgreeOnEveryBeginningOfRandomTexts) {
  EXPECT_TRUE(comparison_.AgreeOnBeginningsOfTextsOf(kBase64Pieces));
}

// 10 characters, at most 6 of them: (10^7 - 1) / 9 texts.
TEST_F(QuotedPrintableComparison, AgreeOnEveryShortText) {
  ASSERT_TRUE(comparison_.AgreeOnAllTexts("=4Ee \t\r\n\x01\xE9", 6));
  EXPECT_EQ(comparison_.compared(), 1111111u);
}

// 6 characters, at most 7 of them: (6^8 - 1) / 5 texts.
TEST_F(QuotedPrintableComparison, AgreeOnEveryShortTextOfBlanksAndLineEnds) {
  ASSERT_TRUE(comparison_.AgreeOnAllTexts("=A \t\r\n", 7));
  EXPECT_EQ(comparison_.compared(), 335923u);
}

// Away from the end of a text 64 characters are read at once, so the short text is placed at the
// start of such a block, in its middle and across its end. 8 characters, at most 4 of them: (8^5 -
// 1) / 7 texts.
TEST_F(QuotedPrintableComparison, AgreeOnEveryShortTextInALongOne) {
  const std::string behind = "a =C3=A9 b\r\n" + std::string(150, 'c') + " \r\nd";
  for (const std::size_t at : {0U, 1U, 15U, 16U, 30U, 31U, 32U, 60U, 61U, 62U, 63U, 64U, 65U}) {
    ASSERT_TRUE(comparison_.AgreeOnAllTexts("=4E \t\r\n\x01", 4, std::string(at, 'x'), behind))
        << at;
    ASSERT_TRUE(
        comparison_.AgreeOnAllTexts("=\r\n ", 4, "=C3=A9\r\n" + std::string(at, ' '), behind));
  }
  EXPECT_EQ(comparison_.compared(), 13u * (4681 + 341));
}

TEST_F(QuotedPrintableComparison, AgreeOnEveryPairOfBytes) {
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("", ""));
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("", "a"));
  EXPECT_EQ(comparison_.compared(), 2u * 0x10000);
}

TEST_F(QuotedPrintableComparison, AgreeOnEveryCode) {
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("=", ""));
  ASSERT_TRUE(comparison_.AgreeOnAllPairs("=", "a"));
  EXPECT_EQ(comparison_.compared(), 2u * 0x10000);
}

// Away from the end of a text its regular parts are read 64 characters at a time, so each kind of
// code and line end is placed at every position of a text that is regular elsewhere. The text is
// also cut inside the code, behind it and around 64 and 128 characters: what lies behind the cut,
// such as the digits of a code, is no part of the text.
TEST_F(QuotedPrintableComparison, AgreeOnEveryPositionInALongText) {
  constexpr std::size_t kLongest = 200;
  const std::vector<std::string> pieces = {"=C3",   "=e9", "=C3=A9", "=4z",      "=z4",    "==41",
                                           "=\r\n", "=\n", "=\r",    "= \t\r\n", " =\r\n", "\r\n",
                                           "\n",    "\r",  " \r\n",  "\t\n",     "\x01",   "\x1F"};
  for (const std::string& piece : pieces) {
    for (std::size_t at = 0; at < kLongest; ++at) {
      const std::string text = std::string(at, 'a') + piece + std::string(kLongest, 'b');
      for (std::size_t length = at + 1; length <= at + 4; ++length) {
        ASSERT_TRUE(comparison_.Agree(std::string_view(text).substr(0, length)));
      }
      for (const std::size_t behind : {15U, 16U, 62U, 63U, 64U, 65U, 126U, 127U, 128U, 129U}) {
        ASSERT_TRUE(comparison_.Agree(std::string_view(text).substr(0, at + behind)));
      }
      ASSERT_TRUE(comparison_.Agree(text));
    }
  }
  EXPECT_EQ(comparison_.compared(), 18u * kLongest * (4 + 10 + 1));
}

// A text of nothing but codes and soft line breaks, cut at every position: in blocks of 64
// characters codes lie across the edges, and their ends are consumed already when the next block
// begins.
TEST_F(QuotedPrintableComparison, AgreeOnEveryBeginningOfDenseCodes) {
  for (const std::string piece : {"=C3", "=\r\n", "\r\n", "=C3=\r\n", "a=e9\r\n", "=3D \r\n"}) {
    for (const std::string before : {"", "a", "ab"}) {
      std::string text = before;
      while (text.size() < 200) text += piece;
      for (std::size_t length = 0; length < 200; ++length) {
        ASSERT_TRUE(comparison_.Agree(std::string_view(text).substr(0, length)));
      }
    }
  }
  EXPECT_EQ(comparison_.compared(), 6u * 3 * 200);
}

// Runs of plain characters are read sixteen at a time, so runs of every length are compared, each
// with every kind of end.
TEST_F(QuotedPrintableComparison, AgreeOnEveryLengthOfRuns) {
  const std::vector<std::string> ends = {"",     "=", "=C3",  "=\r\n",  " \r\n", "\t \n",
                                         "\r\n", " ", "\x01", "=C3=A9", "= \n",  "=x"};
  for (const std::string& end : ends) {
    for (std::size_t length = 0; length <= 70; ++length) {
      const std::string run = std::string(length, 'a').replace(length / 2, length / 4, "\t \xE9");
      ASSERT_TRUE(comparison_.Agree(run + end));
      ASSERT_TRUE(comparison_.Agree(run + end + run + end + "b"));
    }
  }
  EXPECT_EQ(comparison_.compared(), 12u * 71 * 2);
}

TEST_F(QuotedPrintableComparison, AgreeOnEveryByteInARun) {
  for (int byte = 0; byte < 0x100; ++byte) {
    for (std::size_t at = 0; at < 40; ++at) {
      std::string run(40, 'a');
      run[at] = static_cast<char>(byte);
      ASSERT_TRUE(comparison_.Agree(run));
      ASSERT_TRUE(comparison_.Agree(run + "\r\n"));
    }
  }
  EXPECT_EQ(comparison_.compared(), 256u * 40 * 2);
}

TEST_F(QuotedPrintableComparison, AgreeOnEveryBeginningOfRandomTexts) {
  EXPECT_TRUE(comparison_.AgreeOnBeginningsOfTextsOf(kQuotedPrintablePieces));
}

}  // namespace
}  // namespace zqv::test
