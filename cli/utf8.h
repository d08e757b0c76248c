// UTF-8, one code point at a time, for text that may be broken.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

struct CodePoint {
  char32_t value;     // the byte itself when it begins no well-formed sequence
  std::size_t bytes;  // 1 then
  bool valid;
};

// The first code point of a text that is not empty.
CodePoint FirstCodePoint(std::string_view text);

// Appends the character of a number that HTML or CSS has for one: U+FFFD for 0, for surrogates and
// beyond U+10FFFF (HTML, section 13.2.5.80; CSS Syntax, section 4.3.7).
void AppendCharacter(char32_t number, std::string* text);

// How many bytes of `text` fit into `most` bytes without cutting through a sequence.
std::size_t WholeSequences(std::string_view text, std::size_t most);

// U+061C, U+200E, U+200F: characters without a shape that set the direction of their neighbours.
bool IsDirectionMark(char32_t c);
// U+202A to U+202E, U+2066 to U+2069: they turn the direction of everything that follows.
bool IsDirectionOverride(char32_t c);
// Characters that show nothing and take no room, such as U+200B, U+2028, U+FEFF and U+E0001, all of
// the above among them. Not those that join or part letters of scripts and pictures, U+200C and
// U+200D, nor the variation selectors.
bool IsInvisible(char32_t c);
// U+0000 to U+001F and U+007F to U+009F.
bool IsControl(char32_t c);

}  // namespace zqv::cli
