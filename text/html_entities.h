// The named character references that the HTML converter knows: the 252 of HTML 4.01 and "apos".
//
// A name in a text needs only be the beginning of a row's name, and the first row wins. So the
// order of the rows is part of the rule.
#pragma once

#include <cstddef>
#include <string_view>

namespace zqv::text {

struct HtmlEntity {
  char32_t code_point;
  std::string_view name;  // ASCII
};

inline constexpr std::size_t kHtmlEntityCount = 253;
extern const HtmlEntity kHtmlEntities[kHtmlEntityCount];

// The code point of the first row whose name begins with `beginning`, compared with its case; 0
// when there is none.
char32_t FindHtmlEntity(std::u32string_view beginning);

}  // namespace zqv::text
