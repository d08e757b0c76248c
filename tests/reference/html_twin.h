// HTML to plain text, rule by rule, with nothing clever about it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zqv::reference {

// The named references in their order: name and code point.
using NamedReferences = std::vector<std::pair<std::string, char32_t>>;

std::u32string HtmlToText(const std::u32string& html, const NamedReferences& references);

}  // namespace zqv::reference
