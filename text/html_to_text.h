// From HTML to readable plain text.
//
// One forward pass over the code points, without a parse tree: tags go, some of them leave a line
// break, a tab, a space or a bullet, script, style and noscript lose their text, character
// references become characters, and runs of white space become one. Line breaks are CR.
#pragma once

#include <string>
#include <string_view>

namespace zqv::text {

// The plain text of an HTML text. Nothing in it is an error: a tag, comment or reference without
// an end runs to the end of the text. Time and memory are linear in the input: bullets of lists
// nested thousands deep are not indented any more.
std::u32string HtmlToPlainText(std::u32string_view html);
// The same of a text of ASCII characters.
std::u32string HtmlToPlainText(std::string_view html);

}  // namespace zqv::text
