#include "email/transfer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace zqv::test {
namespace {

struct MechanismRow {
  const char* name;
  std::string_view mechanism;
  bool known;
};

void PrintTo(const MechanismRow& row, std::ostream* out) { *out << row.name; }

class KnownMechanism : public ::testing::TestWithParam<MechanismRow> {};

TEST_P(KnownMechanism, IsAsListed) {
  EXPECT_EQ(email::is_known_mechanism(GetParam().mechanism), GetParam().known);
}

constexpr MechanismRow kMechanisms[] = {
    // clang-format off
    {"Absent",                 "",                      true},
    {"Base64",                 "base64",                true},
    {"Base64InCapitals",       "BASE64",                true},
    {"Base64InBoth",           "bAsE64",                true},
    {"QuotedPrintable",        "quoted-printable",      true},
    {"QuotedPrintableInBoth",  "Quoted-Printable",      true},
    {"Binary",                 "binary",                true},
    {"SevenBit",               "7bit",                  true},
    {"SevenBitInCapitals",     "7BIT",                  true},
    {"EightBit",               "8bit",                  true},
    {"BlankBehind",            "7bit ",                 false},
    {"BlankBefore",            " 7bit",                 false},
    {"TabBehind",              "base64\t",              false},
    {"CommentBehind",          "base64 (as ever)",      false},
    {"NulBehind",              {"7bit\0", 5},           false},
    {"Beginning",              "base6",                 false},
    {"Longer",                 "base644",               false},
    {"WithoutHyphen",          "quotedprintable",       false},
    {"WithUnderscore",         "quoted_printable",      false},
    {"UuEncode",               "x-uuencode",            false},
    {"OnlyABlank",             " ",                     false},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Mechanisms, KnownMechanism, ::testing::ValuesIn(kMechanisms),
                         [](const auto& row) { return row.param.name; });

struct DecodeRow {
  const char* name;
  const char* mechanism;
  std::string_view body;
  std::string_view decoded;
};

void PrintTo(const DecodeRow& row, std::ostream* out) { *out << row.name; }

class Transfer : public ::testing::TestWithParam<DecodeRow> {};

TEST_P(Transfer, IsTakenOff) {
  const email::DecodedBody body = email::DecodeData(GetParam().mechanism, GetParam().body);
  EXPECT_EQ(body.bytes(), GetParam().decoded);
}

constexpr DecodeRow kBase64[] = {
    // clang-format off
    {"Whole",                    "base64", "QUJD",                  "ABC"},
    {"InCapitals",               "BASE64", "QUJD",                  "ABC"},
    {"OnePad",                   "base64", "QUI=",                  "AB"},
    {"TwoPads",                  "base64", "6Q==",                  "\xE9"},
    {"LinesOfBothKinds",         "base64", "QU\r\nJD\nREVG\n",      "ABCDEF"},
    {"StrangersAreSkipped",      "base64", "Q!U*J D|\x01\xE9",      "ABC"},
    {"UrlAlphabetIsSkipped",     "base64", "Q-U_JD",                "ABC"},
    {"NulIsSkipped",             "base64", {"QU\0JD", 5},           "ABC"},
    {"ThreeLeftOverAreFlushed",  "base64", "QUI",                   "AB"},
    {"TwoLeftOverAreFlushed",    "base64", "QUJDQQ",                "ABCA"},
    {"OneLeftOverIsDropped",     "base64", "QUJDQ",                 "ABC"},
    {"GoesOnAfterPads",          "base64", "QQ==Qg==",              "AB"},
    {"PadInThirdPlaceEndsFour",  "base64", "QQ=BQg==",              "AB"},
    // 100 is 100100 in its low six bits; "Q", "U" and "J" are 010000, 010100 and 001001.
    {"PadInTheFirstPlaceIs100",  "base64", "=QUJ",                  "\x91\x05\x09"},
    {"PadInTheSecondPlaceIs100", "base64", "Q=UJ",                  "BE\x09"},
    {"NulByte",                  "base64", "AEE=",                  {"\0A", 2}},
    {"Empty",                    "base64", "",                      ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Base64, Transfer, ::testing::ValuesIn(kBase64),
                         [](const auto& row) { return row.param.name; });

constexpr DecodeRow kQuotedPrintable[] = {
    // clang-format off
    {"Code",                     "quoted-printable", "caf=E9",      "caf\xE9"},
    {"CodeInLowerCase",          "quoted-printable", "caf=e9",      "caf\xE9"},
    {"MechanismInBothCases",     "Quoted-Printable", "caf=E9",      "caf\xE9"},
    {"SoftBreak",                "quoted-printable", "a=\nb",       "ab"},
    {"SoftBreakWithCrLf",        "quoted-printable", "a=\r\nb",     "ab"},
    {"HardBreak",                "quoted-printable", "a\nb\n",      "a\nb\n"},
    {"CrLfBecomesLf",            "quoted-printable", "a\r\nb",      "a\nb"},
    {"BlanksInALine",            "quoted-printable", "a  b",        "a  b"},
    {"ControlCharactersGo",      "quoted-printable", "a\x01" "b",   "ab"},
    {"BadCodeStays",             "quoted-printable", "a=zz",        "a=zz"},
    {"HalfABadCodeStays",        "quoted-printable", "a=Az",        "a=Az"},
    {"EqualsSign",               "quoted-printable", "a=3Db",       "a=b"},
    {"LfCrIsOneBreak",           "quoted-printable", "a\n\rb",      "a\nb"},
    {"LoneCrIsABreak",           "quoted-printable", "a\rb\r",      "a\nb\n"},
    {"BlanksBeforeCrLfGo",       "quoted-printable", "a \t\r\nb",   "a\nb"},
    {"BlanksTakeALoneLfAlong",   "quoted-printable", "a \t\nb",     "ab"},
    {"BlanksInASoftBreak",       "quoted-printable", "a= \t\r\nb",  "ab"},
    {"EqualsAndBlanksStay",      "quoted-printable", "a= \tb",      "a= \tb"},
    {"BadCodeKeepsAControl",     "quoted-printable", "a=\x01z",     "a=\x01z"},
    {"BadCodeKeepsTheNextOne",   "quoted-printable", "==41",        "==41"},
    {"BadCodeKeepsALineEnd",     "quoted-printable", "=4\rb",       "=4\rb"},
    {"EqualsAtTheEndStays",      "quoted-printable", "a=",          "a="},
    {"HalfACodeAtTheEndStays",   "quoted-printable", "a=4",         "a=4"},
    {"SoftBreakAtTheEndStays",   "quoted-printable", "a=\n",        "a="},
    {"SoftCrLfAtTheEndGoes",     "quoted-printable", "a=\r\n",      "a"},
    {"BlankAtTheEndGivesEquals", "quoted-printable", "a ",          "a="},
    {"TabsAtTheEndGiveATab",     "quoted-printable", "a\t\t",       "a=\t"},
    {"Empty",                    "quoted-printable", "",            ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(QuotedPrintable, Transfer, ::testing::ValuesIn(kQuotedPrintable),
                         [](const auto& row) { return row.param.name; });

constexpr std::string_view kRaw = {"=E9 QUJD \r\n\0\xE9 ", 14};
constexpr DecodeRow kIdentity[] = {
    // clang-format off
    {"Absent",       "",           kRaw, kRaw},
    {"SevenBit",     "7bit",       kRaw, kRaw},
    {"EightBit",     "8BIT",       kRaw, kRaw},
    {"Binary",       "binary",     kRaw, kRaw},
    {"UnknownOnes",  "x-uuencode", kRaw, kRaw},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Identity, Transfer, ::testing::ValuesIn(kIdentity),
                         [](const auto& row) { return row.param.name; });

TEST(DecodedBody, IsTheVeryBytesWhenNothingHadToBeDecoded) {
  const std::string_view text = "text";
  EXPECT_EQ(email::DecodeData("8bit", text).bytes().data(), text.data());
}

TEST(DecodedBody, KeepsItsOwnBytesWhenItIsMoved) {
  auto first = email::DecodeData("base64", "c2hvcnQ=");
  const email::DecodedBody second(std::move(first));
  EXPECT_EQ(second.bytes(), "short");
}

}  // namespace
}  // namespace zqv::test
