#include "tests/reference/reference_charset.h"

#include <cstddef>

namespace zqv::reference {

std::string NormaliseCharset(const std::string& name) {
  // Quotes are searched in the text from which everything else that is dropped has been removed.
  std::string kept;
  for (const char c : name) {
    const int byte = static_cast<unsigned char>(c);
    const bool is_dropped = std::string(" -._").find(c) != std::string::npos;
    if (byte >= 0x20 && byte < 0x80 && !is_dropped) kept += c;
  }
  const std::size_t first = kept.find('"');
  if (first == std::string::npos) return kept;
  const std::string before = kept.substr(0, first);
  if (before.size() >= 6) return before;
  const std::string after = kept.substr(first + 1);
  return before + after.substr(0, after.find('"'));
}

}  // namespace zqv::reference
