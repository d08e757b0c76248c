// A message as one flat tree: all its parts in one vector, all their header fields in another,
// every text a view of the message's bytes.
//
// What a part is, where it ends and what its header holds agrees with the MIME library's stream
// parser on every input (parser.cc); the library itself is not involved.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "mime/field.h"
#include "mime/header.h"

namespace zqv::mime {

// The place of a part in Message::parts().
using PartIndex = std::uint32_t;
inline constexpr PartIndex kNoPart = UINT32_MAX;

enum class PartKind : std::uint8_t {
  kLeaf,
  kMultipart,  // Content-Type multipart/...: its parts lie between its boundaries
  kMessage,    // Content-Type message/rfc822: exactly one part, the attached message
};

// What ended a header.
enum class HeaderEnd : std::uint8_t {
  kEmptyLine,
  kOtherLine,   // a line that is no field; the body begins with it
  kMessageEnd,  // a field that was not complete by then is lost
};

// What a boundary of an outer multipart does while an inner one is not closed.
enum class OuterBoundary : std::uint8_t {
  kEndsParse,  // the rest of the message is lost, as with the MIME library
  kEndsInner,  // ends the inner one (RFC 2046, section 5.1.2); the parse goes on
};

struct Part {
  // Where the part lies: from the first byte of its header up to the line end before the boundary
  // that ends it, or to the end of the message.
  std::string_view whole;
  std::string_view header;  // its fields, and the empty line after them

  // The undecoded text of a leaf. Of the other kinds it is empty but for the part of the line that
  // ended the header when that line is no field.
  std::string_view body;
  std::string_view preamble;  // of a multipart: the text before its first boundary
  std::string_view epilogue;  // of a multipart: the text after its closing boundary

  std::string_view boundary;  // of a multipart: the parameter, without the two hyphens

  std::uint32_t first_field = 0;  // in Message::fields()
  std::uint32_t field_count = 0;

  PartIndex parent = kNoPart;
  PartIndex first_child = kNoPart;
  PartIndex next_sibling = kNoPart;
  std::uint32_t child_count = 0;

  PartKind kind = PartKind::kLeaf;
  HeaderEnd header_end = HeaderEnd::kMessageEnd;
  bool is_closed = false;  // a multipart whose closing boundary was found
};

class Message {
 public:
  // Parses `bytes`, which must outlive this. Any bytes are a message. Throws std::runtime_error for
  // one beyond the limits (limits.h).
  explicit Message(std::string_view bytes, OuterBoundary outer = OuterBoundary::kEndsParse);
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  std::string_view bytes() const { return bytes_; }

  // Every part before the parts inside it, in the order of the message. The first is the message
  // itself.
  const std::vector<Part>& parts() const { return parts_; }
  const Part& top() const { return parts_.front(); }

  // The fields of all parts, in the order of the message.
  const std::vector<Field>& fields() const { return fields_; }

  // The fields of one part. [borrowed from the message]
  Header HeaderOf(const Part& part) const {
    return Header(fields_.data() + part.first_field, part.field_count);
  }

  // The first byte that was not parsed when an outer boundary ended the parse. Otherwise the end of
  // the message.
  std::size_t parsed_size() const { return parsed_size_; }

  // How many of the parts begin before the first outer boundary inside an inner multipart: those
  // that kEndsParse gives. All when there is no such boundary.
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

// What a walk does with a part when it comes to it.
enum class Visit {
  kInside,  // goes on with the parts inside it, then leaves it
  kLeave,   // skips the parts inside it and leaves it
  kSkip,    // goes on with what follows it
};

// Walks the parts below and including `top` in the order of the message, without recursion.
// `enter(index)` gives a Visit; `leave(index)` follows when the parts inside are done.
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
