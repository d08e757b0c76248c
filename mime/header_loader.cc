#include "mime/header_loader.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "mime/field_name.h"
#include "text/ascii.h"

namespace zqv::mime {
namespace {

using text::IsBlank;
using text::IsLineEnd;

constexpr std::array<bool, 256> MakeNameCharacters() {
  std::array<bool, 256> table{};
  for (std::size_t c = 33; c < 127; ++c) table[c] = c != ':';
  return table;
}
constexpr std::array<bool, 256> kNameCharacters = MakeNameCharacters();

bool IsNameCharacter(char c) { return kNameCharacters[static_cast<unsigned char>(c)]; }

// Whether the library is asked what a field of this name says. Of dates it is not: their texts are
// read by themselves.
bool IsAskedFor(std::optional<FieldName> name) {
  return name.has_value() && name != FieldName::kDate && name != FieldName::kReceived;
}

class HeaderLoader {
 public:
  HeaderLoader(const char* at, const char* end, mimetic::Header& header, MessageLimits& limits,
               LineEndFinder& line_ends, MessageTexts* texts)
      : at_(at),
        end_(end),
        header_(header),
        limits_(limits),
        line_ends_(line_ends),
        texts_(texts),
        values_(texts != nullptr ? &texts->NewFieldTexts(header) : nullptr) {}

  // A field is stored when the line after it begins, so one that the input ends in is lost.
  HeaderEnd Run() {
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
    return {at_, std::move(body_start_)};
  }

 private:
  // True, with the line end taken, at an empty line.
  bool EndsHere() {
    if (!IsLineEnd(*at_)) return false;
    at_ = SkipLineEnd(at_, end_);
    return true;
  }

  void SkipBlanks() {
    while (at_ != end_ && IsBlank(*at_)) ++at_;
  }

  void ReadValue() {
    const char* const line_end = line_ends_.Next(at_, end_);
    AppendValue({at_, static_cast<std::size_t>(line_end - at_)});
    at_ = line_end;
  }

  // A line break and the blanks after it count as one space, also when nothing follows them.
  void ReadFold() {
    SkipBlanks();
    if (at_ == end_) return;
    AppendValue(" ");
    ReadValue();
  }

  // The rest of a line that should be a field. False when it is none: then the body has begun, and
  // what was read of the line belongs to it.
  bool ReadField() {
    const char* name_end = at_;
    while (name_end != end_ && IsNameCharacter(*name_end)) ++name_end;
    name_.append(at_, name_end);
    at_ = name_end;
    while (at_ != end_ && *at_ != ':') {
      const bool after_blank = !name_.empty() && IsBlank(name_.back());
      if (!IsBlank(*at_) && (after_blank || !IsNameCharacter(*at_))) {
        body_start_ = std::move(name_);
        return false;
      }
      name_ += *at_++;
    }
    if (at_ == end_) return true;
    if (name_.empty()) {  // a line that begins with the colon is passed over
      at_ = line_ends_.Next(at_, end_);
      return true;
    }
    while (!name_.empty() && IsBlank(name_.back())) name_.pop_back();
    ++at_;
    SkipBlanks();
    ReadValue();
    return true;
  }

  // A value of one piece stays where it lies.
  void AppendValue(std::string_view piece) {
    if (value_.empty() && joined_.empty()) {
      value_ = piece;
      return;
    }
    if (joined_.empty()) joined_ = value_;
    joined_ += piece;
  }

  // QUIRK: a value without a name stays, and the next field's value is appended to it. The library
  // does so with a fold after a line that was passed over. Test: Parser.FoldAfterIgnoredLineStays.
  void StoreField() {
    if (name_.empty()) return;
    const std::optional<FieldName> name = RecogniseFieldName(name_);
    std::string_view value = joined_.empty() ? value_ : joined_;
    limits_.AdmitField(name, value);
    value = value.substr(0, value.find('\0'));
    mimetic::Field& field = header_.emplace_back();
    field.name(name_);
    if (values_ == nullptr || IsAskedFor(name)) {
      field.value(std::string(value));
      if (values_ != nullptr) values_->emplace_back();
    } else {
      values_->push_back(joined_.empty() && !value.empty() ? value : texts_->Keep(value));
    }
    name_.clear();
    value_ = {};
    joined_.clear();
  }

  const char* at_;
  const char* end_;
  mimetic::Header& header_;
  MessageLimits& limits_;
  LineEndFinder& line_ends_;
  MessageTexts* texts_;  // null: the header gets every value
  FieldTexts* values_;   // of the texts
  std::string name_;
  std::string_view value_;  // in the message, when it is all
  std::string joined_;      // all of a value of several pieces
  std::string body_start_;
};

}  // namespace

HeaderEnd LoadHeader(const char* at, const char* end, mimetic::Header& header,
                     MessageLimits& limits, LineEndFinder& line_ends, MessageTexts* texts) {
  return HeaderLoader(at, end, header, limits, line_ends, texts).Run();
}

}  // namespace zqv::mime
