// Writes a page of HTML. It is the only place where text is escaped for HTML.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "cli/safe_html.h"

namespace zqv::cli {

class HtmlWriter {
 public:
  // Appends markup of the program itself: a literal cannot contain anything from a message.
  template <std::size_t kSize>
  HtmlWriter& Markup(const char (&literal)[kSize]) {
    html_.append(literal, kSize - 1);
    return *this;
  }

  // Appends HTML that SafeHtml has sanitized.
  HtmlWriter& Sanitized(const SanitizedHtml& sanitized) {
    html_ += sanitized.html;
    return *this;
  }

  // Appends text, escaped for the content of an element or for an attribute value in double quotes.
  HtmlWriter& Text(std::string_view text);

  std::string Take() { return std::move(html_); }

 private:
  std::string html_;
};

}  // namespace zqv::cli
