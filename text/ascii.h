// Protocol text is ASCII, whatever the process's locale says: its letters, blanks, line ends and
// digits. Comparing words, case counts for nothing, and only ASCII letters have one.
#pragma once

#include <cstddef>
#include <string_view>

namespace zqv::text {

// `c` in lower case when it is an ASCII letter.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

// The value of a hexadecimal digit, -1 for any other character.
constexpr int HexadecimalValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// True when the two are equal but for the case of ASCII letters.
inline bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
  }
  return true;
}

}  // namespace zqv::text
