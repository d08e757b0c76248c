// One charset by the name that the C library of Linux has for it: the one place where the
// platform's own tables are asked. Strict in both directions, nothing is replaced.
#pragma once

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

// The small letter of a capital one, in no language's own way; any other character as it is.
char32_t FoldCase(char32_t c);

}  // namespace zqv::standin
