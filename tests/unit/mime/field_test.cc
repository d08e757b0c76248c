#include "mime/field.h"

#include <gtest/gtest.h>
#include <mimetic/rfc822/field.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::test {
namespace {

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

// Compares our field parser with mimetic's on every text of up to `longest` characters out of
// `alphabet`. Returns the number of comparisons.
std::size_t CompareAllTexts(std::string_view alphabet, std::size_t longest) {
  std::size_t compared = 0;
  for (std::size_t length = 0; length <= longest; ++length) {
    std::string text(length, alphabet.front());
    while (true) {
      const mimetic::Field reference(text);
      const mime::Field field = mime::ParseField(text);
      const std::string name(reference.name().data(), reference.name().size());
      EXPECT_EQ(field.name, UpToNul(name)) << ::testing::PrintToString(text);
      EXPECT_EQ(field.value, UpToNul(reference.value())) << ::testing::PrintToString(text);
      if (::testing::Test::HasFailure()) return compared;
      ++compared;
      std::size_t at = 0;
      while (at < length) {
        const std::size_t next = alphabet.find(text[at]) + 1;
        text[at] = alphabet[next % alphabet.size()];
        if (next < alphabet.size()) break;
        ++at;
      }
      if (at == length) break;
    }
  }
  return compared;
}

// 8 characters, up to 6 of them: (8^7 - 1) / 7 texts.
TEST(ParseField, AgreesWithMimeticOnEveryShortText) {
  EXPECT_EQ(CompareAllTexts(std::string_view("a: \t\r\n\0\x80", 8), 6), 299593U);
}

// 3 characters, up to 10 of them: (3^11 - 1) / 2 texts.
TEST(ParseField, AgreesWithMimeticOnEveryTextOfColonsAndSpaces) {
  EXPECT_EQ(CompareAllTexts("a: ", 10), 88573U);
}

TEST(ParseField, GivesViewsOfTheText) {
  const std::string text = "Subject:  hello";
  const mime::Field field = mime::ParseField(text);
  EXPECT_EQ(field.name.data(), text.data());
  EXPECT_EQ(field.value.data(), text.data() + 10);
  EXPECT_EQ(field.known, std::nullopt) << "the name of a field without a colon is not looked up";
  EXPECT_EQ(field.bytes, "");
}

}  // namespace
}  // namespace zqv::test
