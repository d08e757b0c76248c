// The HTML of a message, made fit to be looked at: nothing in it runs, loads or leads anywhere.
//
// What comes out is written anew from elements and attributes that are known to do no harm, so that
// it does not matter how a browser would have read what came in. Scripts, forms, frames, embedded
// things and what names other files are left out; the target of a link becomes its tooltip. Of
// style sheets stays what safe_css.h says.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/links.h"

namespace zqv::cli {

// Gives a data URI for the picture with this Content-ID, or an empty text.
using PictureOf = std::function<std::string(std::string_view content_id)>;

struct SafeLetter {
  // One element kLetterRoot with one kLetterBody in it, which has the attributes of the text's body
  // element: the same in a page of its own and within another page.
  std::string html;
  LinkList links;  // of a, area, form, button, input and base elements
};

// Costs no more than the size of both texts. `html` is UTF-8.
SafeLetter SafeHtml(std::string_view html, const PictureOf& picture);

}  // namespace zqv::cli
