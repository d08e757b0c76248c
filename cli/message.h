// Access to the objects of a message: members that may be missing, the tree of parts, the
// attachments.
//
// A library may register fewer classes and members than expected, and a host with missing entry
// points may leave members nil. Both count as absent here. Exceptions that the library raises are
// passed on.
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

// Read properties of an object that may be nil. Absent ones are nil.
standin::Value Member(const standin::Object& object, std::string_view property);
standin::String TextMember(const standin::Object& object, std::string_view property);
standin::Object ObjectMember(const standin::Object& object, std::string_view property);
// Calls a method without parameters that returns an array. Returns its elements without nil ones;
// empty when the method is absent.
std::vector<standin::Object> ListMember(const standin::Object& object,
                                        std::string_view declaration);

// The child parts of an entity that is a multipart or message; empty for any other.
std::vector<standin::Object> PartsOf(const standin::Object& entity);

// The declarations of the methods that return a message's two lists of MimeAttachmentZQV.
inline constexpr std::string_view kAttachments = "Attachments as MimeAttachmentZQV()";
inline constexpr std::string_view kInlines = "Inlines as MimeAttachmentZQV()";

// The fields of a header, in order.
std::vector<standin::Object> FieldsOf(const standin::Object& header);

// The MIME type in a header, without parameters: "text/plain". Empty when the header has none.
std::string MimeTypeOf(const standin::Object& header);

// Makes a part number of the positions of a part and its ancestors among their siblings, innermost
// first: "2.1" for {1, 2}. "0" when `ordinals` is empty.
std::string PartNumber(const std::vector<std::size_t>& ordinals);

// All entities of a message, parents before children.
//
// The message has number 0, its children 1, 2, 3, and the children of 2 have 2.1, 2.2 and so on.
// The message in an attached message with number 2 has number 2.1. Numbers are not stored but made
// on request, because they are long in a message that nests thousands deep.
class PartTree {
 public:
  struct Part {
    standin::Object entity;
    std::size_t parent;   // index of the parent; the message's own index for the message
    std::size_t ordinal;  // position among its siblings, from 1; 0 for the message
    std::size_t depth;    // nesting depth; 0 for the message
    bool has_parts;
  };

  explicit PartTree(const standin::Object& email);

  const std::vector<Part>& parts() const { return parts_; }
  std::string Number(std::size_t index) const;

 private:
  std::vector<Part> parts_;
};

// Finds an entity by its number. Throws std::runtime_error when there is none.
standin::Object FindPart(const standin::Object& email, const std::string& number);

// Finds the part that an attachment describes, by their common body object.
class PartFinder {
 public:
  explicit PartFinder(const PartTree& tree);

  // The index of the part in the tree; nothing when the host lacks what is needed to find it.
  // `record` is a MimeAttachmentZQV.
  std::optional<std::size_t> Find(const standin::Object& record) const;

 private:
  std::unordered_map<const void*, std::size_t> by_body_;
};

// An attachment or inline part, as the library lists it.
struct Attached {
  standin::Object record;  // a MimeAttachmentZQV
  bool is_inline;
  std::optional<std::size_t> part;  // index in PartTree; unset: not known
};

// Attachments and inline parts together, in the order of the parts that they describe.
std::vector<Attached> ListAttached(const standin::Object& email, const PartTree& tree);

}  // namespace zqv::cli
