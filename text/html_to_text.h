// Converts HTML to readable plain text.
//
// Tags are removed; some of them become a line break, a tab, a space or a bullet. The text inside
// script, style and noscript is removed. Character references become characters, and of each run
// of white space only the first character stays. Line breaks in the result are CR.
#pragma once

#include <string>
#include <string_view>

namespace zqv::text {

// The plain text of an HTML text, in code points. Accepts any input: a tag or comment without an
// end extends to the end of the text. Takes O(n) time and memory; so that lists nested thousands
// deep keep to that, all indentation in one text is limited to 4 million spaces.
std::u32string HtmlToPlainText(std::u32string_view html);
// The same for HTML that consists of ASCII characters only.
std::u32string HtmlToPlainText(std::string_view html);

}  // namespace zqv::text
