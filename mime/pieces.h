// Helpers that split and trim the value of a field.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/ascii.h"

namespace zqv::mime {

// Returns the text in `rest` before the first `separator`, and removes this text and the separator
// from `rest`. Without a separator, returns all of `rest` and leaves it empty.
inline std::string_view TakeUpTo(char separator, std::string_view& rest) {
  const std::size_t size = std::min(rest.find(separator), rest.size());
  const std::string_view front = rest.substr(0, size);
  rest.remove_prefix(std::min(size + 1, rest.size()));
  return front;
}

// Returns `text` without the spaces and tabs at both ends.
inline std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && base::IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && base::IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace zqv::mime
