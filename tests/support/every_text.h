// Helpers to compare two implementations on many texts: all short texts, and random texts made of
// pieces.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/build.h"

namespace zqv::test {

// Whether tests use fewer texts, because the library is slow.
inline constexpr bool kIsSlowBuild = !kShips;

// Calls visit(text) for every text of up to `most` of these characters, the shortest first.
template <class Visit>
void ForEachText(std::string_view characters, std::size_t most, Visit visit) {
  std::vector<std::size_t> digits;
  std::string text;
  while (text.size() <= most) {
    visit(text);
    std::size_t at = 0;
    while (at < digits.size() && ++digits[at] == characters.size()) digits[at++] = 0;
    if (at == digits.size()) {
      digits.push_back(0);
      text.push_back(characters.front());
    }
    for (std::size_t i = 0; i <= at && i < text.size(); ++i) text[i] = characters[digits[i]];
  }
}

// Calls difference(text) for every text of up to `most` of these characters. Returns the first
// result that is not empty, with its text; empty when all results are empty.
template <class Difference>
std::string FirstDifferenceOfAll(Difference difference, std::string_view characters,
                                 std::size_t most) {
  std::string first;
  ForEachText(characters, most, [&](const std::string& text) {
    if (!first.empty()) return;
    const std::string found = difference(text);
    if (!found.empty()) first = "'" + text + "': " + found;
  });
  return first;
}

// A random text of fewer than `most` pieces.
template <std::size_t kSize>
std::string RandomText(std::mt19937& random, const std::string_view (&pieces)[kSize],
                       std::size_t most) {
  std::string text;
  for (std::size_t left = random() % most; left > 0; --left) text += pieces[random() % kSize];
  return text;
}

}  // namespace zqv::test
