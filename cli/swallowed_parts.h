// Finds parts that the library takes for the text of another part. If no empty line ends a header,
// the library continues the header over the next boundary, so that it swallows the boundary and the
// next part. RFC 2046, section 5.1.2, ends the header at the boundary.
//
//   --b                                    --b
//   Content-Type: text/plain               Content-Type: text/plain
//   --b                        is read as
//   Content-Type: image/png                --b
//                                          Content-Type: image/png ... is the text of the first
//   ...
#pragma once

#include <string_view>
#include <vector>

#include "cli/message_source.h"
#include "mime/message.h"

namespace zqv::cli {

// The extent of a part of the library's tree, without the parts that it swallowed.
struct PartExtent {
  std::string_view own;  // like mime::Part::whole, but ends at the boundary in the header
  std::vector<std::string_view> swallowed;  // the swallowed parts, each with its header
  bool is_swallowed = false;  // this part is itself inside the text that another part swallowed
};

// Returns the extent of each part. `source` must outlive the result.
std::vector<PartExtent> ExtentsOf(const MessageSource& source);

// Splits `text` at lines that are a boundary. Text before the first boundary and after a closing
// one is not part of the result, nor is the line end before each boundary. [borrowed from `text`]
std::vector<std::string_view> PartsBetween(std::string_view text, std::string_view boundary);

}  // namespace zqv::cli
