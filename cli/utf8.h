// Decoding of UTF-8, one code point at a time, for text that may be malformed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

struct CodePoint {
  char32_t value;     // the byte itself when it begins no well-formed sequence
  std::size_t bytes;  // length of the sequence; 1 when it is not well-formed
  bool valid;
};

// Decodes the first code point of a text, which must not be empty.
CodePoint FirstCodePoint(std::string_view text);

// Appends the character that an HTML or CSS escape with this number stands for. 0, surrogates and
// numbers above U+10FFFF give U+FFFD (HTML, section 13.2.5.80; CSS Syntax, section 4.3.7).
void AppendCharacter(char32_t number, std::string* text);

// Returns the length of the longest start of `text` with at most `most` bytes that does not end
// within a sequence.
std::size_t WholeSequences(std::string_view text, std::size_t most);

// Invisible characters that affect the direction of their neighbours: U+061C, U+200E, U+200F.
bool IsDirectionMark(char32_t c);
// Characters that change the direction of all following text: U+202A to U+202E, U+2066 to U+2069.
bool IsDirectionOverride(char32_t c);
// Characters that are invisible and have no width, such as U+200B, U+2028, U+FEFF and U+E0001,
// including the two groups above. Not included are the joiners U+200C and U+200D and the variation
// selectors, which change how scripts and emoji look.
bool IsInvisible(char32_t c);
// U+0000 to U+001F and U+007F to U+009F.
bool IsControl(char32_t c);

}  // namespace zqv::cli
