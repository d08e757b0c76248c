#include "cli/raw_message.h"

#include <algorithm>

#include "cli/mail_text.h"
#include "cli/open_multiparts.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

using standin::SameName;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

struct Line {
  std::string_view text;  // without its end
  std::string_view end;
  std::size_t number;  // from 1
};

// Reads a text line by line.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(text) { Find(); }

  bool IsAtEnd() const { return rest_.empty(); }
  const Line& line() const { return line_; }

  void Next() {
    rest_.remove_prefix(line_.text.size() + line_.end.size());
    ++line_.number;
    Find();
  }

 private:
  void Find() {
    const std::size_t length = std::min(rest_.find_first_of("\r\n"), rest_.size());
    const std::string_view behind = rest_.substr(length, 2);
    const bool is_pair = behind.size() == 2 && IsLineEnd(behind[1]) && behind[0] != behind[1];
    line_.text = rest_.substr(0, length);
    line_.end = behind.substr(0, is_pair ? 2 : 1);
  }

  std::string_view rest_;
  Line line_ = {{}, {}, 1};
};

// How long the name at the front of a header line is; nothing when the line is no field. 0 for a
// line that begins with the colon, which the library passes over.
std::optional<std::size_t> NameLength(std::string_view line) {
  const auto end = std::find_if(line.begin(), line.end(),
                                [](char c) { return c <= ' ' || c > '~' || c == ':'; });
  const auto length = static_cast<std::size_t>(end - line.begin());
  const std::size_t colon = line.find_first_not_of(" \t", length);
  if (colon == std::string_view::npos || line[colon] != ':') return std::nullopt;
  return length;
}

// What ends a header at this line; nothing for a line that belongs to it.
std::optional<HeaderEnd> EndAt(std::string_view line, bool is_first, const OpenMultiparts& open) {
  if (line.empty()) return HeaderEnd::kBlankLine;
  if (open.Find(line)) return HeaderEnd::kDelimiter;
  const bool is_fold = IsBlank(line.front()) && !is_first;
  return is_fold || NameLength(line) ? std::nullopt : std::optional(HeaderEnd::kOtherLine);
}

// One header. A delimiter that ends it is left to be read again.
class HeaderReader {
 public:
  HeaderReader(LineReader* lines, const OpenMultiparts& open, RawPart* part,
               std::vector<RawField>* fields)
      : lines_(*lines), open_(open), part_(*part), fields_(*fields) {}

  void Run() {
    part_.first_field = fields_.size();
    bool goes_on = true;
    for (; goes_on && !lines_.IsAtEnd(); is_first_ = false) goes_on = ReadLine(lines_.line());
    part_.field_count = fields_.size() - part_.first_field;
    if (!has_other_ends_) part_.lone_cr_line = kNoLine;
  }

 private:
  bool ReadLine(const Line& line) {
    const std::optional<HeaderEnd> end = EndAt(line.text, is_first_, open_);
    if (end) {
      part_.header_end = *end;
      part_.end_text = line.text;
      part_.end_line = line.number;
    } else {
      AddLine(line);
    }
    if (end == HeaderEnd::kDelimiter) return false;
    NoteLineEnd(line);
    lines_.Next();
    return !end;
  }

  void AddLine(const Line& line) {
    if (IsBlank(line.text.front()) && !is_first_) {
      if (can_fold_) {
        std::string_view& value = fields_.back().value;
        const char* const end = line.text.data() + line.text.size();
        value = {value.data(), static_cast<std::size_t>(end - value.data())};
      }
      return;
    }
    const std::size_t length = NameLength(line.text).value_or(0);
    can_fold_ = length > 0;
    if (!can_fold_) return;
    const std::size_t colon = line.text.find(':', length);
    fields_.push_back({line.text.substr(0, length), line.text.substr(colon + 1), line.number});
  }

  void NoteLineEnd(const Line& line) {
    if (line.end != "\r") {
      has_other_ends_ = has_other_ends_ || !line.end.empty();
    } else if (part_.lone_cr_line == kNoLine) {
      part_.lone_cr_line = line.number;
    }
  }

  LineReader& lines_;
  const OpenMultiparts& open_;
  RawPart& part_;
  std::vector<RawField>& fields_;
  bool is_first_ = true;
  bool can_fold_ = false;
  bool has_other_ends_ = false;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : lines_(bytes) {}

  RawMessage Run() {
    BeginPart(true);
    while (!lines_.IsAtEnd()) {
      const std::size_t number = lines_.line().number;
      const auto delimiter = open_.Find(lines_.line().text);
      lines_.Next();
      if (delimiter) Divide(*delimiter, number);
    }
    if (message_.rest == RestOfParts::kNone) message_.known = message_.parts.size();
    return std::move(message_);
  }

 private:
  // From here on the library goes another way.
  void Diverge(RestOfParts rest) {
    if (message_.rest != RestOfParts::kNone) return;
    message_.known = message_.parts.size();
    message_.rest = rest;
  }

  // A part; when that is an attached message, the message in it too, and so on.
  void BeginPart(bool is_message) {
    while (true) {
      RawPart& part = message_.parts.emplace_back();
      part.is_message = is_message;
      part.line = lines_.line().number;
      HeaderReader(&lines_, open_, &part, &message_.fields).Run();
      if (part.header_end == HeaderEnd::kDelimiter) {
        Diverge(RestOfParts::kUnknown);
        return;
      }
      NoteKind(&part);
      if (part.kind != RawKind::kMessage) return;
      if (part.header_end == HeaderEnd::kOtherLine) {  // in which the library goes on reading
        Diverge(RestOfParts::kUnknown);
        return;
      }
      is_message = true;
    }
  }

  void NoteKind(RawPart* part) {
    const RawField* const field = FindField(message_, *part, "Content-Type");
    if (field == nullptr) return;
    const std::string value = Unfolded(field->value);
    const std::string_view type = TypeOf(value);
    if (SameName(type, "message/rfc822")) part->kind = RawKind::kMessage;
    if (!SameName(type.substr(0, type.find('/')), "multipart")) return;
    part->kind = RawKind::kMultipart;
    const std::vector<Parameter> parameters = ParametersOf(value);
    const Parameter* const boundary = FindParameter(parameters, "boundary");
    if (boundary == nullptr || boundary->value.empty()) {
      Diverge(RestOfParts::kUnknown);
      return;
    }
    part->boundary = boundary->value;
    open_.Push(*part->boundary);
    open_parts_.push_back(message_.parts.size() - 1);
  }

  RawPart& Innermost() { return message_.parts[open_parts_.back()]; }

  void Pop(std::size_t line) {
    Innermost().last_line = line;
    open_.Pop();
    open_parts_.pop_back();
  }

  void Divide(const OpenMultiparts::Delimiter& delimiter, std::size_t line) {
    if (open_.size() > delimiter.depth + 1) Diverge(RestOfParts::kLost);
    while (open_.size() > delimiter.depth + 1) Pop(line);
    if (delimiter.closes) {
      Innermost().is_closed = true;
      Pop(line);
    } else if (!lines_.IsAtEnd()) {
      Innermost().has_parts = true;
      BeginPart(false);
    }
  }

  LineReader lines_;
  RawMessage message_;
  OpenMultiparts open_;
  std::vector<std::size_t> open_parts_;  // the parts of open_
};

}  // namespace

const RawField* FindField(const RawMessage& message, const RawPart& part, std::string_view name) {
  const RawField* const first = message.fields.data() + part.first_field;
  const RawField* const end = first + part.field_count;
  const RawField* const found =
      std::find_if(first, end, [&](const RawField& field) { return SameName(field.name, name); });
  return found == end ? nullptr : found;
}

RawMessage ReadRawMessage(std::string_view bytes) {
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  return Reader(bytes).Run();
}

}  // namespace zqv::cli
