// ForEachText must enumerate all texts, because the comparisons on every short text are only as
// complete as it is.
#include "tests/support/every_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqv::test {
namespace {

TEST(EveryText, EnumeratesEachTextOnce) {
  std::vector<std::string> texts;
  ForEachText("ab", 2, [&](const std::string& text) { texts.push_back(text); });
  EXPECT_EQ(texts, (std::vector<std::string>{"", "a", "b", "aa", "ba", "ab", "bb"}));
}

TEST(EveryText, TheFirstDifferenceIsReported) {
  const auto difference = [](const std::string& text) {
    return text.size() == 2 && text[0] == 'b' ? std::string("begins with b") : "";
  };
  EXPECT_EQ(FirstDifferenceOfAll(difference, "ab", 1), "");
  EXPECT_EQ(FirstDifferenceOfAll(difference, "ab", 3), "'ba': begins with b");
}

}  // namespace
}  // namespace zqv::test
