// A parsed message as a flat tree: all parts in one vector, linked by indexes, and all header
// fields in another. All texts are views of the message's bytes, except the values of folded
// fields, which are stored with their folds replaced. Nothing is decoded.
//
// With OuterBoundary::kEndsParse, parts and fields are the ones that mimetic's parser finds, for
// every input. The parser itself is our own (parser.cc).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "mime/field.h"
#include "mime/header.h"

namespace zqv::mime {

// The index of a part in Message::parts().
using PartIndex = std::uint32_t;
inline constexpr PartIndex kNoPart = UINT32_MAX;

enum class PartKind : std::uint8_t {
  kLeaf,
  kMultipart,  // Content-Type multipart/...: its children lie between its boundaries
  kMessage,    // Content-Type message/rfc822: has exactly one child, the attached message
};

// What ended a header.
enum class HeaderEnd : std::uint8_t {
  kEmptyLine,
  kOtherLine,   // a line that is no field; the body begins with it
  kMessageEnd,  // the end of the message; a field that ends there is lost
};

// What the parser does at a boundary of an outer multipart while an inner multipart is not closed.
enum class OuterBoundary : std::uint8_t {
  kEndsParse,  // ends the parse: the rest of the message is lost, as with mimetic
  kEndsInner,  // closes the inner multipart (RFC 2046, section 5.1.2) and continues the parse
};

// All texts are borrowed from the message's bytes. Texts that do not apply to a kind of part are
// empty.
struct Part {
  // From the first byte of the part's header up to the line end before the boundary that ends the
  // part, or to the end of the message.
  std::string_view whole;
  std::string_view header;  // the fields and, if there is one, the empty line after them

  // The undecoded body of a leaf. In a multipart or message it is empty, unless a line that is no
  // field ended the header: then it is the start of that line, up to LoadedHeader::rest
  // (header_loader.h).
  std::string_view body;
  std::string_view preamble;  // of a multipart: the text before its first boundary
  std::string_view epilogue;  // of a multipart: the text after its closing boundary

  // Of a multipart: the parameter "boundary", without the "--" that boundary lines put before it.
  std::string_view boundary;

  std::uint32_t first_field = 0;  // index of the part's first field in Message::fields()
  std::uint32_t field_count = 0;

  PartIndex parent = kNoPart;
  PartIndex first_child = kNoPart;
  PartIndex last_child = kNoPart;
  PartIndex next_sibling = kNoPart;
  std::uint32_t child_count = 0;

  PartKind kind = PartKind::kLeaf;
  HeaderEnd header_end = HeaderEnd::kMessageEnd;
  bool is_closed = false;  // of a multipart: its closing boundary was found
};

class Message {
 public:
  // Parses `bytes` [borrowed: they must outlive this object]. Accepts any bytes. Throws
  // std::runtime_error when a limit is exceeded (limits.h), and std::bad_alloc.
  explicit Message(std::string_view bytes, OuterBoundary outer = OuterBoundary::kEndsParse);
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  std::string_view bytes() const { return bytes_; }

  // All parts in the order of the message, each before the parts inside it. The first part is the
  // message itself, and always exists.
  const std::vector<Part>& parts() const { return parts_; }
  const Part& top() const { return parts_.front(); }

  // The fields of all parts in the order of the message.
  const std::vector<Field>& fields() const { return fields_; }

  // The header of one part. [borrows from this object]
  Header HeaderOf(const Part& part) const {
    return Header(fields_.data() + part.first_field, part.field_count);
  }

  // The number of bytes that were parsed: fewer than bytes().size() only when an outer boundary
  // ended the parse (OuterBoundary::kEndsParse).
  std::size_t parsed_size() const { return parsed_size_; }

  // The number of parts that begin before the first boundary of an outer multipart that stands in
  // an unclosed inner multipart. With kEndsInner this is how many parts kEndsParse would give.
  // Equal to parts().size() when there is no such boundary.
  std::size_t parts_before_outer() const { return parts_before_outer_; }

 private:
  friend class Parser;

  std::string_view bytes_;
  std::vector<Part> parts_;
  std::vector<Field> fields_;
  base::TextArena folded_values_;
  std::size_t parsed_size_ = 0;
  std::size_t parts_before_outer_ = 0;
};

// What Walk does with a part after `enter` was called for it.
enum class Visit {
  kInside,  // visits the parts inside it, then calls `leave` for it
  kLeave,   // skips the parts inside it and calls `leave` for it
  kSkip,    // skips the parts inside it, and does not call `leave`
};

// Visits `top` and all parts below it in the order of the message, without recursion. Calls
// enter(index), which returns a Visit, before the parts inside a part are visited, and leave(index)
// after them.
template <class Enter, class Leave>
void Walk(const std::vector<Part>& parts, PartIndex top, Enter enter, Leave leave) {
  PartIndex at = top;
  while (true) {
    const Visit visit = enter(at);
    if (visit == Visit::kInside && parts[at].first_child != kNoPart) {
      at = parts[at].first_child;
      continue;
    }
    if (visit != Visit::kSkip) leave(at);
    while (at != top && parts[at].next_sibling == kNoPart) {
      at = parts[at].parent;
      leave(at);
    }
    if (at == top) return;
    at = parts[at].next_sibling;
  }
}

}  // namespace zqv::mime
