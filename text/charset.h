// Translates the name of a charset, as a message states it (RFC 2045, section 5.1; RFC 2047), to
// the host's text-encoding number.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "abi/encodings.h"

namespace zqv::text {

// The encoding number of a charset, or nullopt for a name that is not in the table. Names are
// normalised by NormaliseCharsetName and compared ignoring case. The table has "binary", with the
// number kUnknownEncoding.
std::optional<abi::Encoding> FindCharset(std::string_view name);

// Like FindCharset, but returns kUnknownEncoding for a name that is not in the table.
inline abi::Encoding GetEncodingValue(std::string_view charset_name) {
  return FindCharset(charset_name).value_or(abi::kUnknownEncoding);
}

// Removes control characters, bytes of 0x80 and above, spaces, '-', '.' and '_', and the double
// quotes around a name, with everything after the closing one.
std::string NormaliseCharsetName(std::string_view name);

}  // namespace zqv::text
