// Bytes in some charset as UTF-8, for people: nothing is refused, and what cannot be read is
// marked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zqv::cli {

// `bytes` in the charset of that name, whatever its case; what is not well-formed in it becomes
// U+FFFD. Bytes that call themselves ASCII and are not are taken for GuessedUtf8. Nothing for a
// charset that the system does not know.
std::optional<std::string> Utf8Of(std::string_view bytes, std::string_view charset);

// `bytes` of no known charset: as they are when they are well-formed UTF-8, else as Windows-1252,
// which most mail of that kind is written in.
std::string GuessedUtf8(std::string_view bytes);

// Whether every sequence is well-formed UTF-8 (RFC 3629).
bool IsWellFormedUtf8(std::string_view bytes);

}  // namespace zqv::cli
