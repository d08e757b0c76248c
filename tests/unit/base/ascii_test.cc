#include "base/ascii.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zqv::test {
namespace {

// Each predicate is checked for all 256 bytes: true for the listed characters, false for all
// others.
std::string Accepted(bool (*accepts)(char)) {
  std::string accepted;
  for (int c = 0; c < 0x100; ++c) {
    if (accepts(static_cast<char>(c))) accepted += static_cast<char>(c);
  }
  return accepted;
}

TEST(Ascii, KindsOfCharacters) {
  EXPECT_EQ(Accepted([](char c) { return base::IsBlank(c); }), "\t ");
  EXPECT_EQ(Accepted([](char c) { return base::IsLineEnd(c); }), "\n\r");
  EXPECT_EQ(Accepted([](char c) { return base::IsDigit(c); }), "0123456789");
  EXPECT_EQ(Accepted([](char c) { return base::IsLetter(c); }),
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
}

TEST(Ascii, LowerCaseChangesAsciiLettersOnly) {
  const std::string_view upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string_view lower = "abcdefghijklmnopqrstuvwxyz";
  for (int i = 0; i < 0x100; ++i) {
    const char c = static_cast<char>(i);
    const std::size_t letter = upper.find(c);
    EXPECT_EQ(base::LowerAscii(c), letter != upper.npos ? lower[letter] : c) << i;
  }
}

TEST(Ascii, HexadecimalDigits) {
  const std::string_view digits = "0123456789abcdef0123456789ABCDEF";
  for (int i = 0; i < 0x100; ++i) {
    const std::size_t place = digits.find(static_cast<char>(i));
    const int value = place != digits.npos ? static_cast<int>(place % 16) : -1;
    EXPECT_EQ(base::HexadecimalValue(static_cast<char>(i)), value) << i;
  }
}

TEST(Ascii, ComparesWordsWithoutRegardToCase) {
  EXPECT_TRUE(base::EqualsIgnoringCase("", ""));
  EXPECT_TRUE(base::EqualsIgnoringCase("Content-ID", "cONTENT-id"));
  EXPECT_FALSE(base::EqualsIgnoringCase("Content-ID", "Content-I"));
  EXPECT_FALSE(base::EqualsIgnoringCase("Content-ID", "Content-ID "));
  EXPECT_FALSE(base::EqualsIgnoringCase("\xC3\x89", "\xC3\xA9")) << "not ASCII letters";
  EXPECT_FALSE(base::EqualsIgnoringCase("[", "{"))
      << "differ by 32 as letters do, but are not letters";
}

// Eight characters are compared at once, so every pair of bytes is tested at every position of
// words of about that length.
TEST(Ascii, EveryPairOfBytesIsComparedAlikeInEveryPlace) {
  for (const std::size_t length : {1U, 7U, 8U, 9U, 16U, 17U}) {
    for (std::size_t place = 0; place < length; ++place) {
      std::string left(length, 'x');
      std::string right(length, 'X');
      for (int a = 0; a < 0x100; ++a) {
        for (int b = 0; b < 0x100; ++b) {
          left[place] = static_cast<char>(a);
          right[place] = static_cast<char>(b);
          const bool expected = base::LowerAscii(left[place]) == base::LowerAscii(right[place]);
          ASSERT_EQ(base::EqualsIgnoringCase(left, right), expected)
              << a << " " << b << " at " << place << " of " << length;
        }
      }
    }
  }
}

}  // namespace
}  // namespace zqv::test
