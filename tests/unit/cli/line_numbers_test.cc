#include "cli/line_numbers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

std::vector<std::size_t> NumbersOf(std::string_view text) {
  const LineNumbers lines(text);
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i <= text.size(); ++i) numbers.push_back(lines.At(text.data() + i));
  return numbers;
}

using Numbers = std::vector<std::size_t>;

// A line end belongs to the line that it ends. The end of a text that ends in a line end belongs to
// the line after it.
TEST(LineNumbers, CountEveryKindOfLineEndOnce) {
  EXPECT_EQ(NumbersOf(""), (Numbers{1}));
  EXPECT_EQ(NumbersOf("ab"), (Numbers{1, 1, 1}));
  EXPECT_EQ(NumbersOf("a\nb\n"), (Numbers{1, 1, 2, 2, 3}));
  EXPECT_EQ(NumbersOf("a\rb"), (Numbers{1, 1, 2, 2}));
  EXPECT_EQ(NumbersOf("a\r\nb"), (Numbers{1, 1, 1, 2, 2}));
  EXPECT_EQ(NumbersOf("a\n\rb"), (Numbers{1, 1, 1, 2, 2}));
  EXPECT_EQ(NumbersOf("\r\n\r\n"), (Numbers{1, 1, 2, 2, 3}));
  EXPECT_EQ(NumbersOf("\n\n\r\r"), (Numbers{1, 2, 2, 3, 4}));
}

TEST(LineNumbers, GiveTheRestOfALine) {
  constexpr std::string_view kText = "ab\r\ncd";
  const LineNumbers lines(kText);
  EXPECT_EQ(lines.RestOfLine(kText.data()), "ab");
  EXPECT_EQ(lines.RestOfLine(kText.data() + 1), "b");
  EXPECT_EQ(lines.RestOfLine(kText.data() + 2), "");
  EXPECT_EQ(lines.RestOfLine(kText.data() + 5), "d");
  EXPECT_EQ(lines.RestOfLine(kText.data() + 6), "");
}

TEST(ForEachLine, GivesLinesAndTheirEnds) {
  std::string seen;
  ForEachLine("a\r\n\nb\r\rc\n\rd"sv, [&](std::string_view line, std::string_view line_end) {
    seen.append(line).append(std::to_string(line_end.size()));
  });
  EXPECT_EQ(seen, "a21b11c2d0");
  ForEachLine("", [](std::string_view, std::string_view) { ADD_FAILURE(); });
}

}  // namespace
}  // namespace zqv::cli
