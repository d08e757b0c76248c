#include "cli/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace zqv::cli {
namespace {

// Encodes any code point in one to four bytes (RFC 3629, section 3), without checking that it is
// valid.
std::string Encode(char32_t c) {
  const auto byte = [](char32_t value) { return static_cast<char>(value); };
  if (c < 0x80) return {byte(c)};
  if (c < 0x800) return {byte(0xC0 | c >> 6), byte(0x80 | (c & 0x3F))};
  if (c < 0x10000) {
    return {byte(0xE0 | c >> 12), byte(0x80 | (c >> 6 & 0x3F)), byte(0x80 | (c & 0x3F))};
  }
  return {byte(0xF0 | c >> 18), byte(0x80 | (c >> 12 & 0x3F)), byte(0x80 | (c >> 6 & 0x3F)),
          byte(0x80 | (c & 0x3F))};
}

TEST(FirstCodePointTest, ReadsEveryCodePointButSurrogates) {
  for (char32_t c = 0; c < 0x140000; ++c) {
    const std::string text = Encode(c) + "x";
    const bool is_character = c < 0x110000 && (c < 0xD800 || c > 0xDFFF);
    const CodePoint found = FirstCodePoint(text);
    ASSERT_EQ(found.valid, is_character) << std::hex << static_cast<unsigned>(c);
    ASSERT_EQ(found.bytes, is_character ? text.size() - 1 : 1);
    ASSERT_EQ(found.value, is_character ? c : static_cast<unsigned char>(text[0]));
  }
}

TEST(FirstCodePointTest, RefusesOverlongAndBrokenSequences) {
  for (const char* text : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\x80",
                           "\xC3", "\xC3\x41", "\xE2\x82", "\xE2\x82\x41", "\xF0\x9F\x8C", "\xFE",
                           "\xFF", "\xC3\xC3", "\xF8\x88\x80\x80\x80"}) {
    const CodePoint found = FirstCodePoint(text);
    EXPECT_FALSE(found.valid) << text;
    EXPECT_EQ(found.bytes, 1U);
    EXPECT_EQ(found.value, static_cast<unsigned char>(text[0]));
  }
}

TEST(WholeSequencesTest, NeverCutsASequence) {
  EXPECT_EQ(WholeSequences("a€b", 0), 0U);
  EXPECT_EQ(WholeSequences("a€b", 1), 1U);
  EXPECT_EQ(WholeSequences("a€b", 3), 1U);
  EXPECT_EQ(WholeSequences("a€b", 4), 4U);
  EXPECT_EQ(WholeSequences("a€b", 100), 5U);
}

}  // namespace
}  // namespace zqv::cli
