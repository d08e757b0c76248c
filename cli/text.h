// Text from a message, made fit for a terminal: whoever wrote the message must not be able to move
// the cursor, recolour the screen or turn the reading direction.
//
// Control characters become \xHH, direction overrides \u{202E} and in single lines all characters
// that show nothing, bytes that are no text \xHH. What
// remains is well-formed UTF-8. A backslash stays as it is: the result is for reading only.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "standin/handles.h"

namespace zqv::cli {

// kMany keeps line feeds and makes CR and CRLF into them; kOne escapes them. Tabs stay.
enum class Lines { kMany, kOne };

// UTF-8 or bytes of no known encoding, such as a file's name.
std::string SafeText(std::string_view text, Lines lines);

// A host string as data for other programs: in UTF-8, CR and CRLF as line feeds, nothing else
// changed. What the host cannot convert becomes safe text.
std::string DataText(const standin::String& string);

// A host string as the host converts it; of one that it cannot convert, the ASCII characters.
// Nil gives an empty text.
std::string SafeText(const standin::String& string, Lines lines);

// One line of safe text without the blanks around it.
std::string SafeLine(const standin::String& string);

// The same for a program, which is not to be protected: nothing is escaped but bytes that cannot be
// converted.
std::string PlainLine(const standin::String& string);

// Columns that a terminal needs for safe text of one line.
std::size_t DisplayWidth(std::string_view text);

// The number that `text` is in decimal digits; nothing when it is anything else.
std::optional<std::size_t> ReadNumber(std::string_view text);

// Whether `text` begins with `start`, but for the case of ASCII letters.
bool StartsWith(std::string_view text, std::string_view start);

// `text` without spaces and tabs at both ends.
std::string_view Trim(std::string_view text);

// `text` cut to so many columns, the last of them "…"; a text that fits is left alone. Safe text of
// one line.
std::string CutToWidth(std::string_view text, std::size_t width);

// "1,204,310".
std::string Grouped(std::size_t number);

// "1 message", "1,204 messages".
std::string Counted(std::size_t number, const std::string& noun);

// "1 byte", "665 bytes".
std::string ByteCount(std::size_t bytes);

}  // namespace zqv::cli
