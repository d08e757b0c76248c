// The named character references of HTML (such as &eacute;) that the converter to plain text
// supports: the 252 of HTML 4.01 and "apos".
//
// A text may abbreviate a name. The first row of the table whose name begins with the abbreviation
// is used, so the order of the rows matters.
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

// The code point of the first row whose name begins with `beginning`; 0 when there is none. The
// comparison is case-sensitive. An empty `beginning` gives the first row.
char32_t FindHtmlEntity(std::u32string_view beginning);

}  // namespace zqv::text
