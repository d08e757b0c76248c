// Long texts, for tests of the cost of hostile mail.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::test {

// `text` repeated until the result has at least `bytes` bytes.
inline std::string Repeat(std::string_view text, std::size_t bytes) {
  std::string result;
  result.reserve(bytes + text.size());
  while (result.size() < bytes) result += text;
  return result;
}

// item(0), item(1) and so on, joined until the result has at least `bytes` bytes.
template <typename Item>
std::string Count(std::size_t bytes, Item item) {
  std::string result;
  for (std::size_t number = 0; result.size() < bytes; ++number) result += item(number);
  return result;
}

}  // namespace zqv::test
