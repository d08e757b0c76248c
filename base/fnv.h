// FNV-1a, 64 bits: a hash that is the same on every machine, one byte at a time.
#pragma once

#include <cstdint>
#include <string_view>

namespace zqv::base {

// Of no bytes.
inline constexpr std::uint64_t kFnvOfNothing = 0xCBF29CE484222325U;

// The hash of some bytes and `c` behind them, from the hash of those bytes.
constexpr std::uint64_t ExtendFnv(std::uint64_t hash, char c) {
  return (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
}

constexpr std::uint64_t Fnv(std::string_view bytes) {
  std::uint64_t hash = kFnvOfNothing;
  for (const char c : bytes) hash = ExtendFnv(hash, c);
  return hash;
}

}  // namespace zqv::base
