// ASCII character classes and case-insensitive comparison, independent of the process's locale
// (unlike <cctype>). Bytes of 0x80 and above belong to no class and have no case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zqv::base {

// Converts 'A' to 'Z' to lower case; returns any other byte unchanged.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsLetter(char c) { return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z'; }
constexpr bool IsAlphanumeric(char c) { return IsLetter(c) || IsDigit(c); }

// The value, 0 to 15, of a hexadecimal digit of either case; -1 for any other character.
constexpr int HexadecimalValue(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = LowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

namespace internal {

// Loads eight bytes, with the ASCII letters among them converted to lower case.
inline std::uint64_t LoadLower8(const char* from) {
  constexpr std::uint64_t kEachByte = 0x0101010101010101U;
  std::uint64_t word;
  std::memcpy(&word, from, sizeof word);
  const std::uint64_t low = word & 0x7F * kEachByte;
  // Set the high bit of each byte that is at least 'A', and of each that is above 'Z'. No addition
  // carries into the next byte, because every byte of `low` is below 0x80.
  const std::uint64_t from_a = low + (0x80 - 'A') * kEachByte;
  const std::uint64_t beyond_z = low + (0x80 - 'Z' - 1) * kEachByte;
  return word | ((from_a & ~beyond_z & ~word & 0x80 * kEachByte) >> 2U);
}

}  // namespace internal

// Whether both texts are equal when the case of ASCII letters is ignored.
inline bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  constexpr std::size_t kStep = sizeof(std::uint64_t);
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  const auto differ_at = [&](std::size_t at) {
    return internal::LoadLower8(left.data() + at) != internal::LoadLower8(right.data() + at);
  };
  if (size >= kStep) {
    for (std::size_t at = 0; at < size - kStep; at += kStep) {
      if (differ_at(at)) return false;
    }
    return !differ_at(size - kStep);
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
  }
  return true;
}

}  // namespace zqv::base
