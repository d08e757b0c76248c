#include "cli/base64.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zqv::cli {

std::string Base64(std::string_view bytes) {
  static constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr std::size_t kBytes = 3;
  std::string text;
  text.reserve((bytes.size() + kBytes - 1) / kBytes * (kBytes + 1));
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kBytes, bytes.size()))) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kBytes; ++i) {
      bits = bits << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
    }
    for (std::size_t i = 0; i <= kBytes; ++i) {
      const unsigned shift = static_cast<unsigned>(kBytes - i) * 6;
      text += i <= bytes.size() ? kDigits[bits >> shift & 63U] : '=';
    }
  }
  return text;
}

}  // namespace zqv::cli
