// FNV-1a, 64 bits: a hash that takes one byte at a time and is the same on every machine.
#pragma once

#include <cstdint>
#include <string_view>

namespace zqv::base {

// The hash of the empty text.
inline constexpr std::uint64_t kFnvOfNothing = 0xCBF29CE484222325U;

// From the hash of a text, computes the hash of that text with `c` appended.
constexpr std::uint64_t ExtendFnv(std::uint64_t hash, char c) {
  return (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
}

// The hash of a whole text.
constexpr std::uint64_t Fnv(std::string_view bytes) {
  std::uint64_t hash = kFnvOfNothing;
  for (const char c : bytes) hash = ExtendFnv(hash, c);
  return hash;
}

}  // namespace zqv::base
