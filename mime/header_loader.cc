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

class HeaderLoader {
 public:
  HeaderLoader(const char* at, const char* end, mimetic::MimeEntity& entity, MessageLimits& limits,
               LineEndFinder& line_ends, MessageTexts* texts)
      : at_(at),
        end_(end),
        header_(entity.header()),
        limits_(limits),
        line_ends_(line_ends),
        texts_(texts),
        entity_texts_(texts != nullptr ? &texts->Begin(entity) : nullptr) {}

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
    const char* const start = at_;
    while (at_ != end_ && IsNameCharacter(*at_)) ++at_;
    const char* const name_end = at_;
    SkipBlanks();
    if (at_ == end_) return true;
    if (*at_ != ':') {
      body_start_.assign(start, at_);
      return false;
    }
    if (at_ == start) {  // a line that begins with the colon is passed over
      at_ = line_ends_.Next(at_, end_);
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
    if (texts_ != nullptr) {
      texts_->AddField(*entity_texts_,
                       {name_, joined_.empty() ? value : texts_->Keep(value), name});
    } else {
      mimetic::Field& field = header_.emplace_back();
      field.name(std::string(name_));
      field.value(std::string(value));
    }
    name_ = {};
    value_ = {};
    joined_.clear();
  }

  const char* at_;
  const char* end_;
  mimetic::Header& header_;
  MessageLimits& limits_;
  LineEndFinder& line_ends_;
  MessageTexts* texts_;        // null: the header gets every field
  EntityTexts* entity_texts_;  // of the texts
  std::string_view name_;
  std::string_view value_;  // in the message, when it is all
  std::string joined_;      // all of a value of several pieces
  std::string body_start_;
};

}  // namespace

HeaderEnd LoadHeader(const char* at, const char* end, mimetic::MimeEntity& entity,
                     MessageLimits& limits, LineEndFinder& line_ends, MessageTexts* texts) {
  return HeaderLoader(at, end, entity, limits, line_ends, texts).Run();
}

}  // namespace zqv::mime
