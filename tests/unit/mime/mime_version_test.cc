// The parser of MIME-Version compared with mimetic's, and with values worked out by hand.
#include "mime/mime_version.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "tests/support/every_text.h"
#include "tests/unit/mime/value_difference.h"

namespace zqv::test {
namespace {

struct VersionRow {
  const char* name;
  const char* value;
  const char* text;
};

template <std::size_t kSize>
void ExpectVersions(const VersionRow (&rows)[kSize]) {
  for (const VersionRow& row : rows) {
    EXPECT_EQ(mime::MimeVersionText(row.value), row.text) << row.name;
    EXPECT_EQ(MimeVersionDifference(row.value), "") << row.name;
  }
}

TEST(MimeVersion, Texts) {
  ExpectVersions({{"usual", "1.0", "1.0"},
                  {"nothing", "", "0.0"},
                  {"one number", "2", "2.0"},
                  {"a dot", ".", "0.0"},
                  {"three numbers", "1.2.3", "1.2.3"},
                  {"four numbers", "1.2.3.4", "1.2.3"},
                  {"third is zero", "1.2.0", "1.2"},
                  {"third alone", "..5", "0.0.5"},
                  {"blanks", " 1 . 0 ", "1.0"},
                  {"comment behind", "1.0 (produced by x 2.1)", "1.0.1"},
                  {"comment before", "(x) 1.0", "0.0"},
                  {"word", "one.zero", "0.0"}});
}

TEST(MimeVersion, UnusualNumbers) {
  ExpectVersions({{"leading zeros", "001.000", "1.0"},
                  {"plus", "+1.+0", "1.0"},
                  {"minus", "-1.0", "-1.0"},
                  {"two signs", "+-1.0", "0.0"},
                  {"sign and blank", "- 1.0", "0.0"},
                  {"white space", "\t\n\v\f\r 1.0", "1.0"},
                  {"negative third", "1.0.-1", "1.0.-1"},
                  {"2^31 - 1", "2147483647.0", "2147483647.0"},
                  {"2^31", "2147483648.0", "-2147483648.0"},
                  {"2^32 + 1", "4294967297.0", "1.0"},
                  {"2^32 as third", "1.0.4294967296", "1.0"},
                  {"2^63 - 1", "9223372036854775807.0", "-1.0"},
                  {"2^63", "9223372036854775808.0", "-1.0"},
                  {"more than 2^64", "99999999999999999999999.0", "-1.0"},
                  {"-2^63", "-9223372036854775808.0", "0.0"},
                  {"-2^63 + 1", "-9223372036854775807.0", "1.0"},
                  {"less than -2^64", "-99999999999999999999999.0", "0.0"}});
}

TEST(MimeVersion, ReadsAsMimeticDoesEveryShortText) {
  constexpr std::string_view kCharacters("0129.+- \t\va\0\x80\xA0", 14);
  EXPECT_EQ(FirstDifferenceOfAll(MimeVersionDifference, kCharacters, kIsSlowBuild ? 4 : 5), "");
}

TEST(MimeVersion, ReadsAsMimeticDoesLongNumbers) {
  constexpr std::string_view kPieces[] = {"0",
                                          "1",
                                          "2",
                                          "4",
                                          "7",
                                          "8",
                                          "9",
                                          "00",
                                          "99",
                                          "2147483647",
                                          "2147483648",
                                          "4294967296",
                                          "922337203685",
                                          "9223372036854775807",
                                          "9223372036854775808",
                                          ".",
                                          ".",
                                          "-",
                                          "+",
                                          " "};
  std::mt19937 random(20'261'122);
  for (int left = kIsSlowBuild ? 5'000 : 200'000; left > 0; --left) {
    const std::string text = RandomText(random, kPieces, 12);
    ASSERT_EQ(MimeVersionDifference(text), "") << text;
  }
}

}  // namespace
}  // namespace zqv::test
