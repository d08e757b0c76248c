// Pure functions on bytes and code points: which encoding bytes are in, well-formed UTF-8, and the
// conversions between UTF-8, UTF-16 and UTF-32 that the host does not do for us.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::base {

// True when no byte is 0x80 or above.
bool IsAscii(std::string_view bytes);

// How many bytes come before the first one that is NUL, or 0x80 or above.
std::size_t LengthOfAsciiText(std::string_view bytes);

// True when the bytes are well-formed UTF-8 (RFC 3629) without control characters other than tab,
// line feed and carriage return. QUIRK: DEL and the other control characters make a text not
// UTF-8, so that 8-bit binary data is not taken for it. Test: IsUtf8.RejectsControlCharacters.
bool is_utf8(const char* bytes, std::size_t length);

// The encoding of bytes that come without a charset: ASCII, UTF-8, or else Mac Roman.
abi::Encoding DetectEncoding(std::string_view bytes);

// `bytes` without a UTF-8 byte-order mark at the front.
inline std::string_view WithoutByteOrderMark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  return bytes.substr(bytes.substr(0, kMark.size()) == kMark ? kMark.size() : 0);
}

// True when `length` bytes at `sequence` are one well-formed UTF-8 sequence whose lead byte asks
// for that length.
bool IsLegalUTF8(const char* sequence, std::size_t length);

// The length in bytes that a lead byte asks for, 1 to 6; lengths over 4 are never legal.
std::size_t Utf8SequenceLength(char lead);

// What became of a conversion: how much was written, and where the input stopped being legal.
struct Conversion {
  std::size_t written = 0;  // units
  std::size_t stopped = 0;  // bytes of input that were used
  bool legal = true;        // false when the input at `stopped` is cut off or not legal
};

// Decode to code points up to the first sequence that is not legal. QUIRK: U+FEFF and U+FFFE are
// dropped wherever they occur; they are byte-order marks to the readers of this text.
// Test: Utf8ToUtf32.DropsByteOrderMarks. `out` holds at least one unit per byte, or per UTF-16
// unit.
Conversion Utf8ToUtf32(std::string_view bytes, char32_t* out);
Conversion Utf16ToUtf32(const char16_t* units, std::size_t count, char32_t* out);

// Encodes code points as UTF-16: surrogate values are dropped, anything above U+10FFFF becomes
// U+FFFD, and a zero unit follows the last. `out` holds at least 2 * count + 1 units. Returns the
// number of units without the zero.
std::size_t Utf32ToUtf16(const char32_t* code_points, std::size_t count, char16_t* out);

}  // namespace zqv::base
