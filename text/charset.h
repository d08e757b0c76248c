// From a charset's name, as a message gives it, to the host's text-encoding number.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::text {

// The encoding of a charset name, which is compared without its case, blanks, quotes, "-", "." and
// "_". Nothing for a name that is not in the table. The charset "binary" is known, but has
// kUnknownEncoding.
std::optional<abi::Encoding> FindCharset(std::string_view name);

// The same, kUnknownEncoding for a name that is not in the table.
inline abi::Encoding GetEncodingValue(std::string_view charset_name) {
  return FindCharset(charset_name).value_or(abi::kUnknownEncoding);
}

// The name as the table has it: without bytes outside printable ASCII, blanks and punctuation, and
// cut at a closing double quote.
std::string NormaliseCharsetName(std::string_view name);

}  // namespace zqv::text
