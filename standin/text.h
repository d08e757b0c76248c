// Small helpers for names: the host compares every name without regard to ASCII case.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace zqv::standin {

// Bytes above 0x7F are left as they are.
constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Equal but for ASCII case.
inline bool SameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
  }
  return true;
}

// For keys of ordered containers and for comparing signatures.
inline std::string LowerName(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = LowerAscii(c);
  return lower;
}

// Hash and equality of names for unordered containers.
struct NameHash {
  std::size_t operator()(std::string_view name) const {
    std::size_t hash = 14695981039346656037U;
    for (const char c : name) {
      hash = (hash ^ static_cast<unsigned char>(LowerAscii(c))) * 1099511628211U;
    }
    return hash;
  }
};

struct NameEqual {
  bool operator()(std::string_view left, std::string_view right) const {
    return SameName(left, right);
  }
};

}  // namespace zqv::standin
