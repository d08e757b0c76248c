// Comparing protocol words: case counts for nothing, and only ASCII letters have one.
#pragma once

#include <string_view>

namespace zqv::text {

// `c` in lower case when it is an ASCII letter, whatever the process's locale says.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// True when the two are equal but for the case of ASCII letters.
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace zqv::text
