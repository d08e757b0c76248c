// Finds the end of a part's text: the boundary line of a multipart around it.
#pragma once

#include <string_view>

#include "mime/open_boundaries.h"

namespace zqv::mime {

// The kind of boundary that a line is (RFC 2046, section 5.1.1).
enum class Boundary {
  kNone,     // no boundary; as the end of a text: the end of the message
  kNext,     // a boundary of the innermost open multipart: another part follows
  kClosing,  // the closing boundary of the innermost open multipart
  kOuter,    // a boundary, closing or not, of another open multipart
};

// All texts are borrowed from the message.
struct PartText {
  std::string_view text;
  Boundary ended_by = Boundary::kNone;
  const char* rest = nullptr;  // start of the line after the boundary, or end of the message
  std::string_view boundary;   // the boundary line without its line end; empty without a boundary
};

// Classifies a line, given without its line end.
Boundary BoundaryOf(std::string_view line, OpenBoundaries& open);

// Reads the text from `at` up to a boundary of an open multipart, or to `end`, the end of the
// message. Throws std::bad_alloc.
PartText ReadPartText(const char* at, const char* end, OpenBoundaries& open);

}  // namespace zqv::mime
