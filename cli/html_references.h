// Decoding of HTML character references, such as "&amp;" and "&#x41;".
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// The context of a text. In an attribute, a name without semicolon that is followed by a letter,
// digit or "=" is not a reference, so that "?a=1&copy=2" stays a URL (HTML, section 13.2.5.73).
enum class HtmlPlace { kContent, kAttribute };

// Decodes the references in `text`, which is UTF-8: all numeric ones, the names of HTML 4.01, and
// the later names of ASCII characters. Other names stay as they are. A number that is not a
// character becomes U+FFFD.
std::string WithoutReferences(std::string_view text, HtmlPlace place);

}  // namespace zqv::cli
