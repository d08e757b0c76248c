// Text conversion between the host's encodings: strict in both directions, nothing is replaced.
// Several threads may convert at the same time.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::standin {

// The text of `bytes` in encoding `to`. Nothing when the bytes are not well-formed in `from`, when
// `to` cannot hold a character, or when an encoding is not known. Unknown (0xFFFF) converts only
// to itself, unchanged.
std::optional<std::string> Convert(std::string_view bytes, abi::Encoding from, abi::Encoding to);

// The code points of `bytes`; nothing as for Convert.
std::optional<std::u32string> CodePoints(std::string_view bytes, abi::Encoding from);

// A readable name ("UTF-8"), "unknown" for 0xFFFF, or the number in hexadecimal.
std::string EncodingName(abi::Encoding encoding);

// For tests and tables: whether Convert knows the encoding at all.
bool IsKnownEncoding(abi::Encoding encoding);

// Both texts with case removed, compared as text: below 0, 0 or above 0. Texts that cannot be
// converted are compared as bytes, ignoring ASCII case.
int CompareText(std::string_view left, abi::Encoding left_encoding, std::string_view right,
                abi::Encoding right_encoding);

}  // namespace zqv::standin
