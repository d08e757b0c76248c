// From bytes to a host string: the only way in which the library makes one.
//
// The host takes the bytes and an encoding number; which of its operations to call depends on its
// version. Nil stands for empty and for failure. Nothing here raises, except for a C++ exception
// that comes out of the host itself.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "host/ref.h"

namespace zqv::host {

// A host string of `length` bytes in `encoding` [new lock]. UTF-16 and UTF-32 come out as UTF-8;
// the single-byte encodings that contain ASCII come out as ASCII when every byte is. Nil for null,
// for a length below 1 or of 2^31 and more, and when the host cannot make it.
StringRef REALBuildUnicodeString(const void* bytes, std::int64_t length, abi::Encoding encoding);

// The same for UTF-16 in host byte order; `byte_length` counts bytes. [new lock]
StringRef REALBuildUnicodeStringUTF16(const char16_t* units, std::int64_t byte_length);

// REALBuildUnicodeString of a view, but what the host throws passes through. [new lock]
StringRef BuildStringOrThrow(std::string_view bytes, abi::Encoding encoding);

// REALBuildUnicodeString of a view. [new lock]
StringRef BuildString(std::string_view bytes, abi::Encoding encoding);

// Bytes that come without a charset, in the encoding that DetectEncoding finds. [new lock]
StringRef BuildDetectedString(std::string_view bytes);

// The same of what comes before the first NUL, if there is one. [new lock]
StringRef BuildDetectedText(std::string_view bytes);

// The same for a NUL-terminated text, which may be null, and for a text up to its first NUL.
// [new lock]
StringRef CString2RB_detect_encoding(const char* cstring);
inline StringRef CString2RB_detect_encoding(const std::string& text) {
  return BuildDetectedText(text);
}

}  // namespace zqv::host
