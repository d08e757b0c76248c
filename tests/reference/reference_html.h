// Reference implementation of the conversion of HTML to plain text: one rule after the other.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zqv::reference {

// The named character references in the order of the table: name and code point.
using NamedReferences = std::vector<std::pair<std::string, char32_t>>;

std::u32string HtmlToText(const std::u32string& html, const NamedReferences& references);

}  // namespace zqv::reference
