// What header fields and bodies say, as far as it can be checked by looking at their text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// A field's value on one line: each line break and the blanks behind it as one blank, none at the
// ends.
std::string Unfolded(std::string_view value);

// One parameter of "text/plain; charset=utf-8", as the library cuts them: at every semicolon.
struct Parameter {
  std::string_view name;
  std::string_view value;  // without the quotes around it
};
std::vector<Parameter> ParametersOf(std::string_view value);
// Null when there is none of this name, whatever its case.
const Parameter* FindParameter(const std::vector<Parameter>& parameters, std::string_view name);

// "text/plain" of "text/plain; charset=utf-8".
std::string_view TypeOf(std::string_view value);

// Of "=?utf-8?Q?Caf=C3=A9?=" (RFC 2047, section 2); its length is not looked at.
struct EncodedWord {
  std::string_view text;  // all of it
  std::string_view charset;
  char letter;  // B, Q, b or q
};
std::vector<EncodedWord> EncodedWordsOf(std::string_view value);

// Whether a percent sign and two hexadecimal digits stand in a text.
bool HasPercentEscape(std::string_view text);

// With the escapes of a URL, such as %40, as the bytes that they stand for.
std::string Unescaped(std::string_view text);

// What is wrong with a body in base64 (RFC 4648, section 4; RFC 2045, section 6.8): characters that
// do not belong there, one digit alone of a group of four, or more of it behind the padding.
enum class Base64Fault { kNone, kForeign, kCut, kMore };
Base64Fault FindBase64Fault(std::string_view text);

}  // namespace zqv::cli
