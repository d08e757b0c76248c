// Detects the encoding of bytes, validates UTF-8, and converts between UTF-8, UTF-16 and UTF-32.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::base {

// Whether all bytes are below 0x80. True for an empty text.
bool IsAscii(std::string_view bytes);

// The number of bytes before the first byte that is NUL or at least 0x80; the whole size if there
// is none.
std::size_t LengthOfAsciiText(std::string_view bytes);

// Whether the bytes are well-formed UTF-8 (RFC 3629) that contains no control characters but tab,
// line feed and carriage return. QUIRK: DEL and the other control characters are not accepted,
// although they are well-formed UTF-8; binary data often has them. Part of the interface's
// contract; changing it is a major version. Test: IsUtf8.RejectsControlCharacters.
bool is_utf8(const char* bytes, std::size_t length);

// Guesses the encoding of bytes without a charset: kAscii if IsAscii, else kUtf8 if is_utf8, else
// kMacRoman.
abi::Encoding DetectEncoding(std::string_view bytes);

// `bytes` without the UTF-8 byte-order mark, if they begin with one. [borrowed from `bytes`]
inline std::string_view WithoutByteOrderMark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  return bytes.substr(bytes.substr(0, kMark.size()) == kMark ? kMark.size() : 0);
}

// Whether the `length` bytes at `sequence` are exactly one code point in well-formed UTF-8
// (RFC 3629, section 4).
bool IsLegalUTF8(const char* sequence, std::size_t length);

// The length of a UTF-8 sequence as its first byte states it, 1 to 6 bytes. A byte that begins no
// sequence counts as 1. Lengths of 5 and 6 come from RFC 2279; such sequences are not well-formed.
std::size_t Utf8SequenceLength(char lead);

// How far a conversion of text came, and why it stopped.
struct Conversion {
  std::size_t written = 0;  // code points written to `out`
  std::size_t stopped = 0;  // bytes of input that were converted
  bool legal = true;        // false when the input at `stopped` is ill-formed or cut off
};

// Decode UTF-8 and UTF-16 to code points, up to the first ill-formed sequence or lone surrogate.
// `out` must have room for one code point for each byte, or for each UTF-16 unit. QUIRK: U+FEFF and
// U+FFFE are dropped everywhere, not only at the start. Part of the interface's contract; changing
// it is a major version. Test: Utf8ToUtf32.DropsByteOrderMarks.
Conversion Utf8ToUtf32(std::string_view bytes, char32_t* out);
Conversion Utf16ToUtf32(const char16_t* units, std::size_t count, char32_t* out);

// Encodes `count` code points as UTF-16 and appends a zero unit. Surrogates are dropped; values
// above U+10FFFF become U+FFFD. `out` must have room for 2 * count + 1 units. Returns the number of
// units written, not counting the zero.
std::size_t Utf32ToUtf16(const char32_t* code_points, std::size_t count, char16_t* out);

}  // namespace zqv::base
