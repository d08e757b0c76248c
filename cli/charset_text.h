// Conversion of bytes in any charset to UTF-8 for a reader. It never fails because of malformed
// bytes: each becomes U+FFFD.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zqv::cli {

// Converts `bytes` from the charset with this name, ignoring case. Malformed bytes become U+FFFD.
// If the charset is ASCII, calls GuessedUtf8, since mail often has other bytes there. Nothing when
// the system does not know the charset.
std::optional<std::string> Utf8Of(std::string_view bytes, std::string_view charset);

// Converts `bytes` of an unknown charset. Well-formed UTF-8 is returned unchanged. Other bytes are
// decoded as Windows-1252, which is the charset of most mail that names none.
std::string GuessedUtf8(std::string_view bytes);

// Whether the whole text is well-formed UTF-8 (RFC 3629).
bool IsWellFormedUtf8(std::string_view bytes);

}  // namespace zqv::cli
