// A header is parsed line by line: a name, a value, and folds, which continue the value. A field is
// stored when the line after it begins; so a field at the very end of the message is lost.
//
//   Subject: a\r\n b\r\n\r\n    one field, "Subject" with the value "a b": a fold is one space
//   Received : x\n              "Received" with "x": blanks before the colon are skipped
//   no field here\n             no colon after the name: ends the header and begins the body
//   : x\n                       no name: the line is skipped
#include "mime/header_loader.h"

#include <cstddef>
#include <optional>
#include <string_view>

#include "base/ascii.h"
#include "base/bytes16.h"
#include "mime/field_name.h"
#include "mime/line_ends.h"

namespace zqv::mime {
namespace {

using base::IsBlank;
using base::IsLineEnd;

// The mask (base/bytes16.h) of the bytes that end a field's name: the space, the colon, and all
// bytes that are not printable ASCII (RFC 5322, section 3.6.8).
base::Bytes16 AreOutsideName(base::Bytes16 c) { return (c <= ' ') | (c == ':') | (c == 0x7F); }

class HeaderLoader {
 public:
  HeaderLoader(const char* at, const char* end, HeaderContext& context)
      : at_(at), end_(end), context_(context) {}

  LoadedHeader Run() {
    bool more = at_ != end_ && !EndsHere() && ReadField();
    while (more && at_ != end_) {
      at_ = SkipLineEnd(at_, end_);
      if (at_ == end_) break;
      if (IsBlank(*at_)) {
        ReadFold();
      } else {
        StoreField();
        more = !EndsHere() && ReadField();
      }
    }
    return {ended_by_, body_ != nullptr ? body_ : at_, at_};
  }

 private:
  // Returns whether the current line is empty. Skips an empty line.
  bool EndsHere() {
    if (!IsLineEnd(*at_)) return false;
    at_ = SkipLineEnd(at_, end_);
    ended_by_ = HeaderEnd::kEmptyLine;
    return true;
  }

  void SkipBlanks() {
    while (at_ != end_ && IsBlank(*at_)) ++at_;
  }

  // Appends the rest of the current line, without its line end, to the value.
  void ReadValue() {
    const char* const line_end = FindLineEnd(at_, end_);
    AppendValue({at_, static_cast<std::size_t>(line_end - at_)});
    at_ = line_end;
    field_end_ = line_end;
  }

  // Appends a folded line to the value: one space for the line break and the blanks after it, even
  // when nothing else is on the line. Appends nothing when the message ends after the blanks.
  void ReadFold() {
    SkipBlanks();
    if (at_ == end_) return;
    AppendValue(" ");
    ReadValue();
  }

  // Parses the current line as the first line of a field. Returns false when anything other than a
  // colon follows the name and the blanks after it: the header ends, `body_` is the start of this
  // line, and `at_` is after the name and the blanks. Otherwise returns true, also for a line that
  // begins with a colon, which is skipped, and when the message ends before the colon.
  bool ReadField() {
    const char* const start = at_;
    const char* const name_end = base::FindFirst(start, end_, AreOutsideName);
    at_ = name_end;
    SkipBlanks();
    if (at_ == end_) return true;
    if (*at_ != ':') {
      body_ = start;
      ended_by_ = HeaderEnd::kOtherLine;
      return false;
    }
    if (at_ == start) {  // no name: skip the line
      at_ = FindLineEnd(at_, end_);
      return true;
    }
    name_ = {start, static_cast<std::size_t>(name_end - start)};
    ++at_;
    SkipBlanks();
    ReadValue();
    return true;
  }

  // Appends `piece` to the value. A value of one piece remains a view of the message; further
  // pieces are joined to it in the arena.
  void AppendValue(std::string_view piece) {
    value_ = value_.empty() ? piece : context_.folded_values.Join(value_, piece);
  }

  // Appends the current field to the context; does nothing when it has no name. QUIRK: a folded
  // line after a skipped line gives a value without a name. This value is kept, and the value of
  // the next field is appended to it. Equal to mimetic's result. Test:
  // Parser.FoldAfterIgnoredLineStays.
  void StoreField() {
    if (name_.empty()) return;
    Field field;
    field.name = name_;
    field.known = RecogniseFieldName(name_);
    field.value = value_.substr(0, value_.find('\0'));
    field.bytes = {name_.data(), static_cast<std::size_t>(field_end_ - name_.data())};
    context_.fields.push_back(field);
    context_.limits.AdmitField(context_.fields);
    name_ = {};
    value_ = {};
  }

  const char* at_;
  const char* const end_;
  HeaderContext& context_;
  HeaderEnd ended_by_ = HeaderEnd::kMessageEnd;
  const char* body_ = nullptr;  // start of the line that ended the header, if it is no field
  std::string_view name_;
  std::string_view value_;  // a view of the message, or of the arena when it has several pieces
  const char* field_end_ = nullptr;
};

}  // namespace

LoadedHeader LoadHeader(const char* at, const char* end, HeaderContext& context) {
  return HeaderLoader(at, end, context).Run();
}

}  // namespace zqv::mime
