// Finds the end of a part's text: the boundary line of a multipart around it.
#pragma once

#include <string_view>

#include "mime/open_boundaries.h"

namespace zqv::mime {

// Whether a line is a boundary, and of which kind (RFC 2046, section 5.1.1).
enum class Boundary {
  kNone,     // the line is no boundary
  kNext,     // a boundary of the innermost open multipart: another part follows
  kClosing,  // the closing boundary of the innermost open multipart
  kOuter,    // a boundary, closing or not, of another open multipart
};

// A text between boundaries. [borrowed from the message]
struct PartText {
  std::string_view text;                // without the line end before the boundary
  Boundary ended_by = Boundary::kNone;  // kNone: the end of the message
  const char* rest = nullptr;  // start of the line after the boundary, or end of the message
  std::string_view boundary;   // the boundary line without its line end; empty without a boundary
};

// Classifies a line, given without its line end. `open` holds the boundaries to compare it with.
Boundary BoundaryOf(std::string_view line, OpenBoundaries& open);

// Returns the text from `at` up to the next boundary of an open multipart, or to `end`, the end of
// the message. `open` holds the boundaries of the open multiparts. Throws std::bad_alloc.
PartText ReadPartText(const char* at, const char* end, OpenBoundaries& open);

}  // namespace zqv::mime
