// Conversion between UTF-32 and a charset that is named as in the C library of Linux.
// charset_iconv.cc implements it with iconv, charset_tables.cc with tables. Conversion is strict:
// malformed bytes and missing characters make it fail, nothing is replaced.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zqv::standin {

// The names of UTF-16 and UTF-32 in this machine's byte order.
inline constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
inline constexpr const char* kUtf16Here = kLittleEndian ? "UTF-16LE" : "UTF-16BE";
inline constexpr const char* kUtf32Here = kLittleEndian ? "UTF-32LE" : "UTF-32BE";

// Decodes the whole text. Returns nothing when the bytes are not well-formed or end within a
// character. `name` is a string literal; an unknown name is fatal.
std::optional<std::u32string> DecodeCharset(std::string_view bytes, const char* name);

// Encodes the whole text. Returns nothing when the charset lacks one of the characters. `name` is a
// string literal; an unknown name is fatal.
std::optional<std::string> EncodeCharset(std::u32string_view text, const char* name);

// Appends a code point as UTF-8. `c` is at most U+10FFFF and not a surrogate.
inline void AppendUtf8(char32_t c, std::string* bytes) {
  const std::size_t length = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  static constexpr unsigned char kFirst[] = {0, 0, 0xC0, 0xE0, 0xF0};
  for (std::size_t i = length; i-- > 0;) {
    const char32_t bits = length == 1 ? c : c >> 6U * i & 0x3FU;
    *bytes += static_cast<char>(i + 1 == length ? kFirst[length] | bits : 0x80 | bits);
  }
}

// Returns the lower-case form of a character, independent of any language. A character without one
// is returned unchanged.
char32_t FoldCase(char32_t c);

}  // namespace zqv::standin
