// Parts that the library takes for the text of others: a header that no empty line ends goes on to
// the boundary, which RFC 2046, section 5.1.2, lets end it, and swallows that with the part behind
// it.
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

// What a part of the library's tree is without what it has swallowed.
struct PartExtent {
  std::string_view own;                     // as mime::Part::whole, up to the boundary
  std::vector<std::string_view> swallowed;  // parts behind it, each from its header on
  bool is_swallowed = false;                // the part itself lies in what another has swallowed
};

// Of each part of a message, which must outlive the result.
std::vector<PartExtent> ExtentsOf(const MessageSource& source);

// The parts in `text` that lines with a boundary divide, without the line end in front of each such
// line. What stands before the first and behind a closing one is no part. [borrowed from `text`]
std::vector<std::string_view> PartsBetween(std::string_view text, std::string_view boundary);

}  // namespace zqv::cli
