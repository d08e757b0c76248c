#include "tests/unit/mime/tree_difference.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

namespace zqv::test {
namespace {

using mime::Message;
using mime::Part;
using mime::PartKind;

// mimetic compares field names without regard to case. This converts one to plain bytes, so that
// case counts.
template <class Text>
std::string_view Bytes(const Text& text) {
  return {text.data(), text.size()};
}

std::string Count(std::size_t reference, std::size_t ours, const char* of_what) {
  if (reference == ours) return {};
  return std::to_string(reference) + " or " + std::to_string(ours) + of_what;
}

std::string HeaderDifference(const mimetic::Header& reference, const mime::Header& ours) {
  std::string found = Count(reference.size(), ours.size(), " fields");
  if (!found.empty()) return found;
  std::size_t number = 0;
  for (const mimetic::Field& field : reference) {
    const std::string place = " of field " + std::to_string(number);
    if (Bytes(field.name()) != ours[number].name) return "the name" + place;
    // mimetic's parser requests the content type, which replaces the field's value by its text
    // form.
    const bool is_type = ours[number].known == mime::FieldName::kContentType;
    const std::string_view value = is_type ? ours.Value(number) : ours[number].value;
    if (field.value() != value) return "the value" + place;
    ++number;
  }
  return {};
}

std::string TextDifference(const mimetic::Body& reference, const Part& ours) {
  if (Bytes(reference) != ours.body) return "the body";
  if (reference.preamble() != ours.preamble) return "the preamble";
  if (reference.epilogue() != ours.epilogue) return "the epilogue";
  return {};
}

// Determines the kind of a part from mimetic's header as mimetic's parser does.
std::string KindDifference(const mimetic::Header& reference, PartKind ours) {
  const auto& type = reference.contentType();
  const bool is_message = type.type() == "message" && type.subtype() == "rfc822";
  const PartKind expected = type.isMultipart() ? PartKind::kMultipart
                            : is_message       ? PartKind::kMessage
                                               : PartKind::kLeaf;
  return ours == expected ? "" : "the kind";
}

std::string Difference(const mimetic::MimeEntity& reference, const Message& message,
                       mime::PartIndex index, const std::string& where) {
  const Part& part = message.parts()[index];
  std::string found = KindDifference(reference.header(), part.kind);
  if (found.empty()) found = HeaderDifference(reference.header(), message.HeaderOf(part));
  if (found.empty()) found = TextDifference(reference.body(), part);
  const auto& parts = reference.body().parts();
  if (found.empty()) found = Count(parts.size(), part.child_count, " parts");
  if (!found.empty()) return where + ": " + found;
  mime::PartIndex child = part.first_child;
  std::size_t number = 0;
  for (const mimetic::MimeEntity* const inner : parts) {
    const std::string place = where + ", part " + std::to_string(number++);
    if (child == mime::kNoPart) return place + ": is missing from its list";
    if (message.parts()[child].parent != index) return place + ": has another parent";
    found = Difference(*inner, message, child, place);
    if (!found.empty()) return found;
    child = message.parts()[child].next_sibling;
  }
  return child == mime::kNoPart ? "" : where + ": more parts than it counts";
}

}  // namespace

std::string FirstDifference(const mimetic::MimeEntity& reference, const mime::Message& message) {
  return Difference(reference, message, 0, "message");
}

std::string DifferenceFromTheReference(std::string_view message) {
  std::istringstream stream{std::string(message)};
  const mimetic::MimeEntity reference(stream);
  return FirstDifference(reference, Message(message));
}

std::size_t Levels(const mime::Message& message) {
  std::size_t level = 0;
  std::size_t deepest = 0;
  mime::Walk(
      message.parts(), 0,
      [&](mime::PartIndex) {
        deepest = std::max(deepest, ++level);
        return mime::Visit::kInside;
      },
      [&](mime::PartIndex) { --level; });
  return deepest;
}

}  // namespace zqv::test
