// Creates host strings from bytes. The whole library uses only these functions for that.
//
// Results are nil for an empty text and on failure. A failure raises no host exception, unless the
// host throws a C++ exception, which is converted to one (errors.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "host/ref.h"

namespace zqv::host {

// Creates a host string from `length` bytes in `encoding`. UTF-16 and UTF-32 are converted to
// UTF-8. Text that is labelled Mac Roman, ISO 8859-1, Windows-1252 or unknown and is pure ASCII is
// labelled ASCII. Nil for null, for a length below 1 or above 2^31 - 1, and when the host cannot
// make it. [new lock]
StringRef REALBuildUnicodeString(const void* bytes, std::int64_t length, abi::Encoding encoding);

// The same for UTF-16 in the byte order of the processor. `byte_length` is in bytes. [new lock]
StringRef REALBuildUnicodeStringUTF16(const char16_t* units, std::int64_t byte_length);

// Like REALBuildUnicodeString, but does not catch a C++ exception that the host throws. [new lock]
StringRef BuildStringOrThrow(std::string_view bytes, abi::Encoding encoding);

// Like REALBuildUnicodeString. [new lock]
StringRef BuildString(std::string_view bytes, abi::Encoding encoding);

// Creates a host string in the encoding that base::DetectEncoding guesses. [new lock]
StringRef BuildDetectedString(std::string_view bytes);

// Like BuildDetectedString, for the bytes before the first NUL. [new lock]
StringRef BuildDetectedText(std::string_view bytes);

// Like BuildDetectedText. A null pointer gives nil. [new lock]
StringRef CString2RB_detect_encoding(const char* cstring);
inline StringRef CString2RB_detect_encoding(const std::string& text) {
  return BuildDetectedText(text);
}

}  // namespace zqv::host
