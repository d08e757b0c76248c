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

constexpr DecodeRow kCodes[] = {
    // clang-format off
    {"Base64",                 "base64",           "QUJD",    "ABC"},
    {"Base64InCapitals",       "BASE64",           "QUJD",    "ABC"},
    {"QuotedPrintable",        "quoted-printable", "caf=E9",  "caf\xE9"},
    {"QuotedPrintableInBoth",  "Quoted-Printable", "caf=E9",  "caf\xE9"},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Codes, Transfer, ::testing::ValuesIn(kCodes),
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

TEST(DecodedBody, BorrowsBytesThatNeedNoDecoding) {
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
