// The transfer decoders beside their twins and the MIME library's own: every short text over the
// characters that matter, every pair of bytes, and random long texts cut at every place.
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

#include "tests/reference/transfer_twin.h"
#include "tests/support/property.h"

namespace zqv::test {
namespace {

struct CodeRow {
  const char* name;
  std::string_view code;
  std::string_view decoded;
};

void PrintTo(const CodeRow& row, std::ostream* out) { *out << row.name; }

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
    // 100 is 100100 in its low six bits; "Q", "U" and "J" are 010000, 010100 and 001001.
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

// A transfer encoding with its twin. Counts what it compares, so that no loop passes by being
// empty.
class Twins {
 public:
  using Decode = std::string (*)(std::string_view);
  Twins(text::DecodedBytes (*decode)(std::string_view), Decode twin, Decode library)
      : decode_(decode), twin_(twin), library_(library) {}

  ::testing::AssertionResult Agree(std::string_view text) {
    ++compared_;
    const text::DecodedBytes decoded = decode_(text);
    const std::string expected = twin_(text);
    if (decoded.view() == expected && library_(text) == expected) {
      return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << ::testing::PrintToString(text) << " gives "
           << ::testing::PrintToString(decoded.view()) << ", its twin gives "
           << ::testing::PrintToString(expected) << ", the library gives "
           << ::testing::PrintToString(library_(text));
  }

  // Every text of at most `longest` characters out of `alphabet`, between two others.
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

  // `before`, each pair of bytes, and `behind`.
  ::testing::AssertionResult AgreeOnAllPairs(const std::string& before, const std::string& behind) {
    for (int pair = 0; pair < 0x10000; ++pair) {
      const std::string bytes = {static_cast<char>(pair / 0x100), static_cast<char>(pair % 0x100)};
      if (const auto agree = Agree(before + bytes + behind); !agree) return agree;
    }
    return ::testing::AssertionSuccess();
  }

  // Random texts put together from `pieces`, and every beginning of each.
  bool AgreeOnBeginningsOfTextsOf(const std::vector<std::string>& pieces) {
    return Holds("the same bytes as the twin", [&] {
      const std::string text = AnyTextOf(pieces);
      for (std::size_t length = 0; length <= text.size(); ++length) {
        const auto agree = Agree(std::string_view(text).substr(0, length));
        if (!agree) RC_FAIL(agree.message());
      }
    });
  }

  std::uint64_t compared() const { return compared_; }

 private:
  // Counts up, the last character fastest; false behind the last text of this length.
  static bool Next(std::string& text, std::string_view alphabet) {
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
      const std::size_t next = alphabet.find(*digit) + 1;
      *digit = alphabet[next % alphabet.size()];
      if (next < alphabet.size()) return true;
    }
    return false;
  }

  text::DecodedBytes (*const decode_)(std::string_view);
  const Decode twin_;
  const Decode library_;
  std::uint64_t compared_ = 0;
};

class Base64Twins : public ::testing::Test {
 protected:
  Twins twins_{text::DecodeBase64, reference::DecodeBase64,
               DecodeAsLibrary<mimetic::Base64::Decoder>};
};

class QuotedPrintableTwins : public ::testing::Test {
 protected:
  Twins twins_{text::DecodeQuotedPrintable, reference::DecodeQuotedPrintable,
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

// 4 characters, up to 9 of them: (4^10 - 1) / 3 texts. They are two groups and one character more;
// "n" and "Y" are the bits 100111 and 011000, so that each bit is met both ways.
TEST_F(Base64Twins, AgreeOnEveryShortTextOfDigitsAndPads) {
  ASSERT_TRUE(twins_.AgreeOnAllTexts("nY/=", 9));
  EXPECT_EQ(twins_.compared(), 349525u);
}

// 8 characters, up to 6 of them: (8^7 - 1) / 7 texts. "{" and "|" stand behind the alphabet's last
// letter, the last byte is above 0x7F.
TEST_F(Base64Twins, AgreeOnEveryShortTextWithStrangers) {
  ASSERT_TRUE(twins_.AgreeOnAllTexts("An=\n-{|\xE9", 6));
  EXPECT_EQ(twins_.compared(), 299593u);
}

TEST_F(Base64Twins, AgreeOnEveryPairOfBytes) {
  ASSERT_TRUE(twins_.AgreeOnAllPairs("", ""));
  ASSERT_TRUE(twins_.AgreeOnAllPairs("QU", "JD"));
  EXPECT_EQ(twins_.compared(), 2u * 0x10000);
}

// Lines of every length, whole and with one character of another kind at every place: they are read
// many characters at a time.
TEST_F(Base64Twins, AgreeOnEveryLengthOfLines) {
  const std::string digits = "QWxhZGRpbjpvcGVuIHNlc2FtZQ+/0189zZ";
  for (const std::string end : {"\r\n", "\n", "\r\r\n"}) {
    for (std::size_t length = 1; length <= 100; ++length) {
      std::string line;
      while (line.size() < length) line += digits[(line.size() * 7 + length) % digits.size()];
      ASSERT_TRUE(twins_.Agree(line + end + line + end + line));
      for (std::size_t at = 0; at < length; ++at) {
        std::string other = line;
        other[at] = "=-\x80 {"[at % 5];
        ASSERT_TRUE(twins_.Agree(line + end + other + end + line + end));
      }
    }
  }
  EXPECT_EQ(twins_.compared(), 3u * (100 + 5050));
}

// Every byte at every place of a line that is read so, and that begins anew within itself.
TEST_F(Base64Twins, AgreeOnEveryByteInALine) {
  const std::string whole = "QWxhZGRpbjpvcGVuIHNlc2FtZSB3aXRoIG1l";
  for (int byte = 0; byte < 0x100; ++byte) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
      std::string line = whole;
      line[at] = static_cast<char>(byte);
      ASSERT_TRUE(twins_.Agree(whole + "\n" + line + "\nQWxh"));
    }
  }
  EXPECT_EQ(twins_.compared(), 256u * 36);
}

TEST_F(Base64Twins, AgreeOnEveryBeginningOfRandomTexts) {
  EXPECT_TRUE(twins_.AgreeOnBeginningsOfTextsOf(kBase64Pieces));
}

// 10 characters, up to 6 of them: (10^7 - 1) / 9 texts.
TEST_F(QuotedPrintableTwins, AgreeOnEveryShortText) {
  ASSERT_TRUE(twins_.AgreeOnAllTexts("=4Ee \t\r\n\x01\xE9", 6));
  EXPECT_EQ(twins_.compared(), 1111111u);
}

// 6 characters, up to 7 of them: (6^8 - 1) / 5 texts.
TEST_F(QuotedPrintableTwins, AgreeOnEveryShortTextOfBlanksAndLineEnds) {
  ASSERT_TRUE(twins_.AgreeOnAllTexts("=A \t\r\n", 7));
  EXPECT_EQ(twins_.compared(), 335923u);
}

// Far from the end of a text 64 characters are read at once; what is of interest may stand at their
// start, in their midst and across their end. 8 characters, up to 4 of them: (8^5 - 1) / 7 texts.
TEST_F(QuotedPrintableTwins, AgreeOnEveryShortTextInALongOne) {
  const std::string behind = "a =C3=A9 b\r\n" + std::string(150, 'c') + " \r\nd";
  for (const std::size_t at : {0U, 1U, 15U, 16U, 30U, 31U, 32U, 60U, 61U, 62U, 63U, 64U, 65U}) {
    ASSERT_TRUE(twins_.AgreeOnAllTexts("=4E \t\r\n\x01", 4, std::string(at, 'x'), behind)) << at;
    ASSERT_TRUE(twins_.AgreeOnAllTexts("=\r\n ", 4, "=C3=A9\r\n" + std::string(at, ' '), behind));
  }
  EXPECT_EQ(twins_.compared(), 13u * (4681 + 341));
}

TEST_F(QuotedPrintableTwins, AgreeOnEveryPairOfBytes) {
  ASSERT_TRUE(twins_.AgreeOnAllPairs("", ""));
  ASSERT_TRUE(twins_.AgreeOnAllPairs("", "a"));
  EXPECT_EQ(twins_.compared(), 2u * 0x10000);
}

TEST_F(QuotedPrintableTwins, AgreeOnEveryCode) {
  ASSERT_TRUE(twins_.AgreeOnAllPairs("=", ""));
  ASSERT_TRUE(twins_.AgreeOnAllPairs("=", "a"));
  EXPECT_EQ(twins_.compared(), 2u * 0x10000);
}

// Runs of every length before what ends them: they are read sixteen characters at a time.
TEST_F(QuotedPrintableTwins, AgreeOnEveryLengthOfRuns) {
  const std::vector<std::string> ends = {"",     "=", "=C3",  "=\r\n",  " \r\n", "\t \n",
                                         "\r\n", " ", "\x01", "=C3=A9", "= \n",  "=x"};
  for (const std::string& end : ends) {
    for (std::size_t length = 0; length <= 70; ++length) {
      const std::string run = std::string(length, 'a').replace(length / 2, length / 4, "\t \xE9");
      ASSERT_TRUE(twins_.Agree(run + end));
      ASSERT_TRUE(twins_.Agree(run + end + run + end + "b"));
    }
  }
  EXPECT_EQ(twins_.compared(), 12u * 71 * 2);
}

TEST_F(QuotedPrintableTwins, AgreeOnEveryByteInARun) {
  for (int byte = 0; byte < 0x100; ++byte) {
    for (std::size_t at = 0; at < 40; ++at) {
      std::string run(40, 'a');
      run[at] = static_cast<char>(byte);
      ASSERT_TRUE(twins_.Agree(run));
      ASSERT_TRUE(twins_.Agree(run + "\r\n"));
    }
  }
  EXPECT_EQ(twins_.compared(), 256u * 40 * 2);
}

TEST_F(QuotedPrintableTwins, AgreeOnEveryBeginningOfRandomTexts) {
  EXPECT_TRUE(twins_.AgreeOnBeginningsOfTextsOf(kQuotedPrintablePieces));
}

}  // namespace
}  // namespace zqv::test
