// Helpers for comparing names. The host ignores ASCII case in every name.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "base/ascii.h"

namespace zqv::standin {

// Returns the name in lower case, for keys of ordered containers and for signatures.
inline std::string LowerName(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = base::LowerAscii(c);
  return lower;
}

// Hash of names for unordered containers. Names that differ in case only have the same hash.
struct NameHash {
  std::size_t operator()(std::string_view name) const {
    // The bits in which upper and lower case differ.
    constexpr std::uint64_t kCaseBits = 0x2020202020202020U;
    std::uint64_t hash = 14695981039346656037U ^ name.size();
    while (!name.empty()) {
      std::uint64_t word = 0;
      const std::size_t size = std::min(name.size(), sizeof word);
      std::memcpy(&word, name.data(), size);
      hash = (hash ^ (word | kCaseBits)) * 1099511628211U;
      hash ^= hash >> 32U;
      name.remove_prefix(size);
    }
    return hash;
  }
};

struct NameEqual {
  bool operator()(std::string_view left, std::string_view right) const {
    return left == right || base::EqualsIgnoringCase(left, right);
  }
};

}  // namespace zqv::standin
