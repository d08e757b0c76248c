// Sanitizes the HTML of a message: the result runs no code, loads nothing and has no links.
//
// The result is written anew from known harmless elements and attributes, so it does not matter how
// a browser would have parsed the original. Scripts, forms, frames, embedded objects and references
// to other files are removed. The target of a link becomes its tooltip. Style sheets are sanitized
// by safe_css.h.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/links.h"

namespace zqv::cli {

// A function that returns the data URI of the picture with this Content-ID; empty when there is
// none.
using PictureOf = std::function<std::string(std::string_view content_id)>;

struct SanitizedHtml {
  // An element kMessageRoot that contains an element kMessageBody, which has the attributes of the
  // original's body element. It looks the same in a document of its own and inside another page.
  std::string html;
  LinkList links;  // targets of a, area, form, button, input and base elements
};

// Sanitizes `html`, which is UTF-8. Time and memory are linear in the size of input and result.
SanitizedHtml SafeHtml(std::string_view html, const PictureOf& picture);

}  // namespace zqv::cli
