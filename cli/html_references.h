// The character references of HTML, such as "&amp;" and "&#x41;", as the characters they stand for.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// Where a text stands. In an attribute, a name without its semicolon that goes on with a letter, a
// digit or "=" is no reference, so that "?a=1&copy=2" stays a URL (HTML, section 13.2.5.73).
enum class HtmlPlace { kContent, kAttribute };

// `text`, which is UTF-8, with its references decoded as browsers do it: all numeric ones, the
// names of HTML 4.01 and those of the ASCII characters. Other names stay as they are written. What
// stands for no character becomes U+FFFD.
std::string WithoutReferences(std::string_view text, HtmlPlace place);

}  // namespace zqv::cli
