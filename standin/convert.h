// Conversion of text between the host's encodings. It is strict: malformed bytes and missing
// characters make it fail, nothing is replaced. Several threads may convert at the same time.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::standin {

// Converts `bytes` from one encoding to another. Returns nothing when the bytes are not well-formed
// in `from`, when `to` lacks a character, or when an encoding is not known. kUnknownEncoding
// (0xFFFF) converts to itself only, without a change.
std::optional<std::string> Convert(std::string_view bytes, abi::Encoding from, abi::Encoding to);

// Decodes `bytes` to code points. Returns nothing in the cases in which Convert does.
std::optional<std::u32string> CodePoints(std::string_view bytes, abi::Encoding from);

// Returns a readable name ("UTF-8"), "unknown" for kUnknownEncoding, or the number in hexadecimal.
std::string EncodingName(abi::Encoding encoding);

// Whether Convert supports the encoding.
bool IsKnownEncoding(abi::Encoding encoding);

// Compares two texts without regard to case. Returns a number below 0, 0, or above 0. Texts that
// cannot be converted are compared as bytes without regard to ASCII case.
int CompareText(std::string_view left, abi::Encoding left_encoding, std::string_view right,
                abi::Encoding right_encoding);

}  // namespace zqv::standin
