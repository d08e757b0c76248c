// Helpers to parse header fields and to check bodies.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// Returns a field's value on one line: each line break and the blanks after it become one blank.
// Blanks at both ends are removed.
std::string Unfolded(std::string_view value);

// A parameter of "text/plain; charset=utf-8". Like the library, the parser splits at every
// semicolon, also inside quotes.
struct Parameter {
  std::string_view name;
  std::string_view value;  // without enclosing quotes
};
std::vector<Parameter> ParametersOf(std::string_view value);
// Finds a parameter by name, ignoring case. Null when there is none.
const Parameter* FindParameter(const std::vector<Parameter>& parameters, std::string_view name);

// Returns the part before the parameters: "text/plain" for "text/plain; charset=utf-8".
std::string_view TypeOf(std::string_view value);

// An encoded word such as "=?utf-8?Q?Caf=C3=A9?=" (RFC 2047, section 2), of any length.
struct EncodedWord {
  std::string_view text;  // the whole word
  std::string_view charset;
  char letter;  // the encoding: B, Q, b or q
};
std::vector<EncodedWord> EncodedWordsOf(std::string_view value);

// Whether a text contains a percent sign followed by two hexadecimal digits.
bool HasPercentEscape(std::string_view text);

// Decodes the percent escapes of a URL, such as %40, to bytes.
std::string Unescaped(std::string_view text);

// A fault of a body in base64 (RFC 4648, section 4; RFC 2045, section 6.8): kForeign: characters
// outside the alphabet; kCut: an incomplete group of digits; kMore: more base64 after the padding.
enum class Base64Fault { kNone, kForeign, kCut, kMore };
Base64Fault FindBase64Fault(std::string_view text);

}  // namespace zqv::cli
