// Reading the text of a part up to the boundary that ends it.
#pragma once

#include <string_view>

#include "mime/open_boundaries.h"

namespace zqv::mime {

// What ended a text.
enum class Boundary {
  kNone,     // the end of the message
  kNext,     // a boundary of the innermost open multipart: another part follows
  kClosing,  // its closing boundary
  kOuter,    // a boundary of another open multipart
};

struct PartText {
  std::string_view text;
  Boundary ended_by = Boundary::kNone;
  const char* rest = nullptr;  // the line after the boundary, or the end of the message
  std::string_view boundary;   // its line, without the line end
};

// What a line does to the text before it. The open boundaries are boundary parameters.
Boundary BoundaryOf(std::string_view line, OpenBoundaries& open);

// The text from `at` up to a boundary of one of the open multiparts, or to the end of the message.
PartText ReadPartText(const char* at, const char* end, OpenBoundaries& open);

}  // namespace zqv::mime
