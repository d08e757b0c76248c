// One charset by the name that the C library of Linux has for it: the one place where the
// platform's own tables are asked. Strict in both directions, nothing is replaced.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zqv::standin {

// UTF-16 and UTF-32 in the byte order of this machine.
inline constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
inline constexpr const char* kUtf16Here = kLittleEndian ? "UTF-16LE" : "UTF-16BE";
inline constexpr const char* kUtf32Here = kLittleEndian ? "UTF-32LE" : "UTF-32BE";

// The whole text, or nothing when the bytes are not well-formed or end within a character. `name`
// is a literal; a name that is not known is fatal.
std::optional<std::u32string> DecodeCharset(std::string_view bytes, const char* name);

// The whole text in the charset, or nothing when it cannot hold a character. As above for names.
std::optional<std::string> EncodeCharset(std::u32string_view text, const char* name);

// Appends a code point, which is at most U+10FFFF and no surrogate, as UTF-8.
inline void AppendUtf8(char32_t c, std::string* bytes) {
  const std::size_t length = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  static constexpr unsigned char kFirst[] = {0, 0, 0xC0, 0xE0, 0xF0};
  for (std::size_t i = length; i-- > 0;) {
    const char32_t bits = length == 1 ? c : c >> 6U * i & 0x3FU;
    *bytes += static_cast<char>(i + 1 == length ? kFirst[length] | bits : 0x80 | bits);
  }
}

// The small letter of a capital one, in no language's own way; any other character as it is.
char32_t FoldCase(char32_t c);

}  // namespace zqv::standin
