#include "cli/html_writer.h"

#include <algorithm>

namespace zqv::cli {
namespace {

std::string_view Escaped(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return "&#39;";
  }
}

}  // namespace

HtmlWriter& HtmlWriter::Text(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = std::min(text.find_first_of("&<>\"'"), text.size());
    html_ += text.substr(0, length);
    if (length < text.size()) html_ += Escaped(text[length]);
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return *this;
}

}  // namespace zqv::cli
