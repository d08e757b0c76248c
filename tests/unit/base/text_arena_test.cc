#include "base/text_arena.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqv::test {
namespace {

using base::TextArena;

TEST(TextArena, KeepsJoinedTextsOfAnyLength) {
  TextArena arena;
  std::vector<std::pair<std::string, std::string_view>> kept;
  for (const std::size_t length : {1U, 998U, 1U, 1U, 999U, 1000U, 1001U, 5000U, 3U, 100000U}) {
    const std::string text(length, static_cast<char>('a' + kept.size()));
    kept.emplace_back("<" + text, arena.Join("<", text));
  }
  for (const auto& [text, joined] : kept) EXPECT_EQ(joined, text);
}

TEST(TextArena, JoinsManyPiecesAndLeavesEarlierTextsAsTheyWere) {
  TextArena arena;
  const std::string_view other = arena.Join("an", "other");
  std::string expected = "first";
  std::string_view joined = "first";
  std::vector<std::pair<std::string, std::string_view>> stages;
  for (int i = 0; i < 2'000; ++i) {
    const std::string piece = " " + std::to_string(i);
    expected += piece;
    joined = arena.Join(joined, piece);
    if (i % 100 == 0) stages.emplace_back(expected, joined);
  }
  EXPECT_EQ(joined, expected);
  for (const auto& [text, stage] : stages) EXPECT_EQ(stage, text);
  EXPECT_EQ(other, "another");
}

TEST(TextArena, ExtendsATextWhereItLies) {
  TextArena arena;
  const std::string_view first = arena.Join("a", "b");
  EXPECT_EQ(arena.Join(first, "c").data(), first.data());
  EXPECT_EQ(arena.Join(first, "").data(), first.data());
  const std::string_view behind = arena.Join("d", "e");
  const std::string_view moved = arena.Join(first, "f");
  EXPECT_NE(moved.data(), first.data()) << "another text follows it in the arena";
  EXPECT_EQ(moved, "abf");
  EXPECT_EQ(behind, "de");
}

TEST(TextArena, ExtendsATextToTheEndOfTheBlock) {
  TextArena arena;
  const std::string_view first = arena.Join("a", std::string(998, 'b'));
  EXPECT_EQ(arena.Join(first, "c").data(), first.data()) << "the first block has 1,000 bytes";
}

TEST(TextArena, CopiesAPieceOfTheLastText) {
  TextArena arena;
  EXPECT_EQ(arena.Join(arena.Join("a", "bc").substr(0, 1), "d"), "ad");
  EXPECT_EQ(arena.Join(arena.Join("a", "bc").substr(1), "d"), "bcd");
  const std::string_view text = arena.Join("a", "bc");
  EXPECT_EQ(arena.Join(text.substr(0, 2), "d"), "abd");
  EXPECT_EQ(text, "abc");
}

}  // namespace
}  // namespace zqv::test
