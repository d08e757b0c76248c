// Writes a page of HTML. The one place where text is escaped.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "cli/safe_html.h"

namespace zqv::cli {

class HtmlWriter {
 public:
  // Markup, which nothing but the program itself can hold.
  template <std::size_t kSize>
  HtmlWriter& Markup(const char (&literal)[kSize]) {
    html_.append(literal, kSize - 1);
    return *this;
  }

  // Markup that SafeHtml made, as it is.
  HtmlWriter& Made(const SafeLetter& letter) {
    html_ += letter.html;
    return *this;
  }

  // Anything else: for the content of an element or for an attribute's value in double quotes.
  HtmlWriter& Text(std::string_view text);

  std::string Take() { return std::move(html_); }

 private:
  std::string html_;
};

}  // namespace zqv::cli
