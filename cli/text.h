// Escapes text from a message for output to a terminal, so that the author of a message cannot move
// the cursor, change colours or reverse the direction of the text. Such text is called safe or
// escaped.
//
// Control characters and malformed bytes become \xHH, direction overrides \u{202E}. In single lines
// (Lines::kOne) other invisible characters are escaped, too. The result is well-formed UTF-8.
// Backslashes are not escaped, so the original cannot be restored from the result.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "standin/handles.h"

namespace zqv::cli {

// The position that a search of a text returns when it finds nothing.
inline constexpr std::size_t kNowhere = std::string_view::npos;

// kMany keeps line feeds and converts CR and CRLF to them. kOne escapes line ends. Both keep tabs.
enum class Lines { kMany, kOne };

// Escapes UTF-8, or bytes of unknown encoding, such as a file name.
std::string SafeText(std::string_view text, Lines lines);

// Converts a host string to UTF-8 with line feeds as line ends, for other programs. If the host
// cannot convert it, the result is escaped.
std::string DataText(const standin::String& string);

// Converts a host string to UTF-8 and escapes it. If the host cannot convert it, only its ASCII
// characters remain unescaped. Empty for nil.
std::string SafeText(const standin::String& string, Lines lines);

// Returns one escaped line without blanks at its ends.
std::string SafeLine(const standin::String& string);

// Returns the same for a program: only bytes that cannot be converted are escaped.
std::string PlainLine(const standin::String& string);

// Returns the number of terminal columns of a safe text of one line.
std::size_t DisplayWidth(std::string_view text);

// Parses a decimal number. Nothing when `text` contains anything but digits or is empty.
std::optional<std::size_t> ReadNumber(std::string_view text);

// Whether `text` begins with `start`, ignoring the case of ASCII letters.
bool StartsWith(std::string_view text, std::string_view start);

// Removes spaces and tabs at both ends.
std::string_view Trim(std::string_view text);

// Shortens a safe text of one line to `width` columns, the last of which becomes "…". A text that
// fits is returned unchanged.
std::string CutToWidth(std::string_view text, std::size_t width);

// Formats a number with separators: "1,204,310".
std::string Grouped(std::size_t number);

// Formats a count with its noun: "1 message", "1,204 messages".
std::string Counted(std::size_t number, const std::string& noun);

// Formats a size: "1 byte", "665 bytes".
std::string ByteCount(std::size_t bytes);

}  // namespace zqv::cli
