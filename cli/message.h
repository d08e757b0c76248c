// What a message's objects tell: members that may be missing, its parts in order, what is attached.
//
// A library may register fewer classes and members than expected, a poor host may leave any of
// them nil; here both are simply absent. Exceptions that the library raises are let through.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "standin/application.h"
#include "standin/handles.h"

namespace zqv::cli {

// Properties of an object that may be nil. Absent ones are nil.
standin::Value Member(const standin::Object& object, std::string_view property);
standin::String TextMember(const standin::Object& object, std::string_view property);
standin::Object ObjectMember(const standin::Object& object, std::string_view property);
// What a method without arguments returns, as a list without its nil elements; empty when absent.
std::vector<standin::Object> ListMember(const standin::Object& object,
                                        std::string_view declaration);

// The parts of an entity that are multiparts or messages themselves; empty for any other.
std::vector<standin::Object> PartsOf(const standin::Object& entity);

// The declarations of a message's two lists of MimeAttachmentZQV.
inline constexpr std::string_view kAttachments = "Attachments as MimeAttachmentZQV()";
inline constexpr std::string_view kInlines = "Inlines as MimeAttachmentZQV()";

// A header's fields in order.
std::vector<standin::Object> FieldsOf(const standin::Object& header);

// "text/plain" of "text/plain; charset=utf-8"; empty when a header names no type.
std::string MimeTypeOf(const standin::Object& header);

// "2.1" of a part that is the first in the second of a message: its ordinal and those of the parts
// around it, the innermost first. "0" for none.
std::string PartNumber(const std::vector<std::size_t>& ordinals);

// All entities of a message, parents first.
//
// The message itself has number 0, its children 1, 2, 3, the children of 2 have 2.1, 2.2 and so on;
// the message within an attached message, number 2 say, is 2.1. Numbers are made when asked for:
// in a message that nests thousands deep they are long.
class PartTree {
 public:
  struct Part {
    standin::Object entity;
    std::size_t parent;   // index; its own for the message
    std::size_t ordinal;  // among its siblings, from 1; 0 for the message
    std::size_t depth;    // 0 for the message
    bool has_parts;
  };

  explicit PartTree(const standin::Object& email);

  const std::vector<Part>& parts() const { return parts_; }
  std::string Number(std::size_t index) const;

 private:
  std::vector<Part> parts_;
};

// The entity with this number; throws std::runtime_error when there is none. Numbers as above.
standin::Object FindPart(const standin::Object& email, const std::string& number);

// Tells which part an attachment describes: they share their body object.
class PartFinder {
 public:
  explicit PartFinder(const PartTree& tree);

  // The part's index in the tree; nothing on a host too poor to tell. `record` is a
  // MimeAttachmentZQV.
  std::optional<std::size_t> Find(const standin::Object& record) const;

 private:
  std::unordered_map<const void*, std::size_t> by_body_;
};

// One attachment or inline part.
struct Attached {
  standin::Object record;  // a MimeAttachmentZQV
  bool is_inline;
  std::optional<std::size_t> part;  // index in the tree; unknown on a poor host
};

// Attachments and inline parts together, in the order of the parts that they describe.
std::vector<Attached> ListAttached(const standin::Object& email, const PartTree& tree);

}  // namespace zqv::cli
