// The message's bytes become a flat list of parts, each before the parts inside it:
//
//   Content-Type: multipart/mixed; boundary=b     0  multipart
//                                                    preamble ""
//   --b
//                                                 1  leaf, child of 0
//   text
//   --b
//   Content-Type: message/rfc822                  2  message, child of 0
//
//   Subject: attached                             3  leaf, child of 2
//
//   its text
//   --b--
//   the epilogue of 0
//
// The text of a part ends at the next boundary of any open multipart. A boundary of the innermost
// multipart begins its next part or, if it is the closing boundary, its epilogue. A boundary of an
// outer multipart means that the inner one was not closed. QUIRK: this ends the parse, and the rest
// of the message is lost. Equal to mimetic's result. Test:
// Parser.InnerMultipartWithoutEndLosesTheRest. With OuterBoundary::kEndsInner the inner multiparts
// are closed instead, and the parse continues.
#include "mime/parser.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "mime/header_loader.h"
#include "mime/parameters.h"

namespace zqv::mime {
namespace {

// Returns the kind of a part with this Content-Type. QUIRK: blanks in the type are not ignored:
// "message / rfc822" is not message/rfc822. Equal to mimetic's result.
// Test: Parser.GivesTheReferencesTree.
PartKind KindOf(const ContentType& type) {
  if (base::EqualsIgnoringCase(type.type(), "multipart")) return PartKind::kMultipart;
  const bool is_message = base::EqualsIgnoringCase(type.type(), "message") &&
                          base::EqualsIgnoringCase(type.subtype(), "rfc822");
  return is_message ? PartKind::kMessage : PartKind::kLeaf;
}

const char* EndOf(std::string_view text) { return text.data() + text.size(); }

std::string_view Between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

bool IsPrefix(std::string_view prefix, std::string_view text) {
  return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

Parser::Parser(Message& message, OuterBoundary outer)
    : message_(message),
      at_(message.bytes().data()),
      end_(at_ + message.bytes().size()),
      outer_(outer) {}

void Parser::Run() {
  constexpr std::size_t kUsualFields = 32;
  message_.fields_.reserve(kUsualFields);
  PartIndex at = AddPart(kNoPart);
  while (at != kNoPart) {
    Part& part = message_.parts_[at];
    ReadHeader(part);
    switch (part.kind) {
      case PartKind::kMessage:
        at = AddPart(at);
        break;
      case PartKind::kMultipart:
        OpenMultipart(at);
        part.preamble = ReadText();
        at = NextPart(at);
        break;
      case PartKind::kLeaf:
        part.body = Between(part.body.data(), EndOf(ReadText()));
        at = NextPart(at);
        break;
    }
  }
  message_.parsed_size_ = static_cast<std::size_t>(at_ - message_.bytes_.data());
  if (message_.parts_before_outer_ == 0) message_.parts_before_outer_ = message_.parts_.size();
}

PartIndex Parser::AddPart(PartIndex parent) {
  limits_.AdmitPart();
  const auto index = static_cast<PartIndex>(message_.parts_.size());
  Part& part = message_.parts_.emplace_back();
  part.whole = Between(at_, at_);
  part.parent = parent;
  if (parent == kNoPart) return index;
  Part& around = message_.parts_[parent];
  const PartIndex previous = std::exchange(around.last_child, index);
  (previous == kNoPart ? around.first_child : message_.parts_[previous].next_sibling) = index;
  ++around.child_count;
  return index;
}

void Parser::ReadHeader(Part& part) {
  HeaderContext context{message_.fields_, message_.folded_values_, limits_};
  part.first_field = static_cast<std::uint32_t>(message_.fields_.size());
  const LoadedHeader header = LoadHeader(at_, end_, context);
  part.field_count = static_cast<std::uint32_t>(message_.fields_.size()) - part.first_field;
  part.header = Between(at_, header.body);
  part.header_end = header.ended_by;
  part.body = Between(header.body, header.rest);
  at_ = header.rest;

  const Field* const fields = message_.fields_.data();
  const auto is_type = [](const Field& field) { return field.known == FieldName::kContentType; };
  const Field* const type =
      std::find_if(fields + part.first_field, fields + message_.fields_.size(), is_type);
  if (type == fields + message_.fields_.size()) return;
  const ContentType content_type(type->value);
  part.kind = KindOf(content_type);
  if (part.kind == PartKind::kMultipart) {
    part.boundary = content_type.parameters().Find("boundary");
  }
}

void Parser::OpenMultipart(PartIndex part) {
  boundaries_.Push(message_.parts_[part].boundary);
  open_multiparts_.push_back(part);
}

PartIndex Parser::NextPart(PartIndex last) {
  while (text_.ended_by == Boundary::kNext || text_.ended_by == Boundary::kClosing) {
    const PartIndex innermost = open_multiparts_.back();
    Part& multipart = message_.parts_[innermost];
    if (text_.ended_by == Boundary::kClosing) multipart.is_closed = true;
    EndParts(last, innermost);
    last = innermost;
    if (at_ == end_) {
      text_.text = Between(end_, end_);
      break;
    }
    if (text_.ended_by == Boundary::kNext) return AddPart(innermost);
    boundaries_.Pop();
    open_multiparts_.pop_back();
    multipart.epilogue = ReadText();
  }
  EndParts(last, kNoPart);
  return kNoPart;
}

void Parser::EndParts(PartIndex last, PartIndex around) {
  for (PartIndex at = last; at != around; at = message_.parts_[at].parent) {
    Part& part = message_.parts_[at];
    part.whole = Between(part.whole.data(), EndOf(text_.text));
  }
}

std::string_view Parser::ReadText() {
  text_ = ReadPartText(at_, end_, boundaries_);
  at_ = text_.rest;
  if (text_.ended_by == Boundary::kOuter) HandleOuterBoundary();
  return text_.text;
}

void Parser::HandleOuterBoundary() {
  if (message_.parts_before_outer_ == 0) message_.parts_before_outer_ = message_.parts_.size();
  if (outer_ == OuterBoundary::kEndsParse) return;
  do {
    boundaries_.Pop();
    open_multiparts_.pop_back();
  } while (!IsPrefix(boundaries_.Innermost(), text_.boundary.substr(kHyphens.size())));
  text_.ended_by = BoundaryOf(text_.boundary, boundaries_);
}

Message::Message(std::string_view bytes, OuterBoundary outer) : bytes_(bytes) {
  Parser(*this, outer).Run();
}

}  // namespace zqv::mime
