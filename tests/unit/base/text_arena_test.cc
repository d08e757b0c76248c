#include "base/text_arena.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqv::test {
namespace {

using base::TextArena;

TEST(TextArena, KeepsCopiesOfAnyLength) {
  TextArena arena;
  std::vector<std::pair<std::string, std::string_view>> kept;
  for (const std::size_t length : {1U, 998U, 1U, 1U, 999U, 1000U, 1001U, 5000U, 0U, 3U, 100000U}) {
    std::string text(length, static_cast<char>('a' + kept.size()));
    const std::string_view copy = arena.Keep(text);
    EXPECT_NE(copy.data(), text.data());
    EXPECT_NE(copy.data(), nullptr) << "empty is not nothing";
    kept.emplace_back(std::move(text), copy);
  }
  for (const auto& [text, copy] : kept) EXPECT_EQ(copy, text);
}

TEST(TextArena, CopiesStayWhereTheyAreWhenItIsMoved) {
  TextArena arena;
  const std::string_view small = arena.Keep("small");
  const std::string_view large = arena.Keep(std::string(5'000, 'x'));
  TextArena moved = std::move(arena);
  const std::string_view later = moved.Keep("later");
  EXPECT_EQ(small, "small");
  EXPECT_EQ(large, std::string(5'000, 'x'));
  EXPECT_EQ(later, "later");
}

}  // namespace
}  // namespace zqv::test
