// A header is read line by line: name, value, folds. A field is stored when the line after it
// begins, so one that the message ends in is lost.
//
//   Subject: a\r\n b\r\n\r\n    one field, "Subject", "a b" (a fold is one space)
//   Received : x\n              "Received", "x" (blanks before the colon are dropped)
//   no field here\n             ends the header; the body begins with this line
//   : x\n                       skipped
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

// Printable ASCII characters but the blank and the colon are those of a name.
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
  // True, with the line end consumed, at an empty line.
  bool EndsHere() {
    if (!IsLineEnd(*at_)) return false;
    at_ = SkipLineEnd(at_, end_);
    ended_by_ = HeaderEnd::kEmptyLine;
    return true;
  }

  void SkipBlanks() {
    while (at_ != end_ && IsBlank(*at_)) ++at_;
  }

  void ReadValue() {
    const char* const line_end = FindLineEnd(at_, end_);
    AppendValue({at_, static_cast<std::size_t>(line_end - at_)});
    at_ = line_end;
    field_end_ = line_end;
  }

  // A line break and the blanks after it count as one space, also when nothing follows them.
  void ReadFold() {
    SkipBlanks();
    if (at_ == end_) return;
    AppendValue(" ");
    ReadValue();
  }

  // The rest of a line that should be a field. False when it is none: then the body has begun, and
  // the characters that were read of the line belong to it.
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
    if (at_ == start) {  // a line that begins with the colon is skipped
      at_ = FindLineEnd(at_, end_);
      return true;
    }
    name_ = {start, static_cast<std::size_t>(name_end - start)};
    ++at_;
    SkipBlanks();
    ReadValue();
    return true;
  }

  // A value of one piece stays where it lies.
  void AppendValue(std::string_view piece) {
    value_ = value_.empty() ? piece : context_.folded_values.Join(value_, piece);
  }

  // QUIRK: a value without a name stays, and the next field's value is appended to it: a fold after
  // a line that was skipped. Equal to the MIME library's result. Test:
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
  const char* body_ = nullptr;  // of a line that is no field
  std::string_view name_;
  std::string_view value_;  // in the message, or joined of several pieces
  const char* field_end_ = nullptr;
};

}  // namespace

LoadedHeader LoadHeader(const char* at, const char* end, HeaderContext& context) {
  return HeaderLoader(at, end, context).Run();
}

}  // namespace zqv::mime
