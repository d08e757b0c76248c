// Protocol text is ASCII, whatever the process's locale says: its letters, digits, blanks and line
// ends. Words are compared without regard to the case of ASCII letters, the only ones that have
// case here.
#pragma once

#include <cstddef>
#include <string_view>

namespace zqv::base {

// `c` in lower case when it is an ASCII letter; any other character unchanged.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsLetter(char c) { return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z'; }

// The value of a hexadecimal digit of either case, -1 for any other character.
constexpr int HexadecimalValue(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = LowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// True when the two are equal but for the case of ASCII letters.
inline bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
  }
  return true;
}

}  // namespace zqv::base
