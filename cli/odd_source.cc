#include "cli/odd_source.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cli/mail_text.h"
#include "cli/odd_words.h"
#include "cli/text.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

using standin::SameName;

// Fields that a header holds once (RFC 5322, section 3.6; RFC 2045, section 3; RFC 2183, section
// 2). Those that begin with Content- mean something in every header, the others in a message's.
constexpr std::string_view kOnce[] = {
    "Date",
    "From",
    "Sender",
    "Reply-To",
    "To",
    "Cc",
    "Bcc",
    "Message-ID",
    "In-Reply-To",
    "References",
    "Subject",
    "MIME-Version",
    "Content-Type",
    "Content-Transfer-Encoding",
    "Content-ID",
    "Content-Description",
    "Content-Disposition",
};
constexpr std::string_view kOfContent = "Content-";
constexpr std::string_view kDate = "Date";

bool MeansSomething(std::string_view name, const RawPart& part) {
  return part.is_message || SameName(name.substr(0, kOfContent.size()), kOfContent);
}

// The spelling in kOnce; empty for other fields.
std::string_view OnceName(std::string_view name) {
  const auto found = std::find_if(std::begin(kOnce), std::end(kOnce),
                                  [&](std::string_view once) { return SameName(once, name); });
  return found == std::end(kOnce) ? std::string_view() : *found;
}

class Search {
 public:
  Search(const RawMessage& message, Findings* findings) : message_(message), findings_(*findings) {}

  void Run() {
    for (index_ = 0; index_ < message_.parts.size(); ++index_) {
      const RawPart& part = message_.parts[index_];
      if (!IsInBase64(index_)) CheckHeaderEnd(part);
      CheckMultipart(part);
      CheckRepeatedFields(part);
      for (std::size_t i = 0; i < part.field_count; ++i) {
        CheckField(part, message_.fields[part.first_field + i]);
      }
    }
    CheckLostParts();
  }

 private:
  // A line of the part that is looked at.
  Place At(std::size_t line) const {
    return {index_ < message_.known ? std::optional(index_) : std::nullopt, line};
  }

  // Whether a part is a message that was attached in base64: it has no header to be read.
  bool IsInBase64(std::size_t index) const {
    if (index == 0 || message_.parts[index - 1].kind != RawKind::kMessage) return false;
    const RawField* const encoding =
        FindField(message_, message_.parts[index - 1], "Content-Transfer-Encoding");
    return encoding != nullptr && SameName(Unfolded(encoding->value), "base64");
  }

  void CheckHeaderEnd(const RawPart& part) {
    if (part.lone_cr_line != kNoLine) findings_.Add(Oddity::kLoneCr, At(part.lone_cr_line));
    const Place place = At(part.end_line);
    switch (part.header_end) {
      case HeaderEnd::kBlankLine:
        break;
      case HeaderEnd::kOtherLine:
        findings_.Add(Oddity::kNoBlankLine, place, {Quoted(part.end_text)});
        break;
      case HeaderEnd::kDelimiter:
        findings_.Add(Oddity::kDelimiterInHeader, place, {Quoted(part.end_text)});
        break;
      case HeaderEnd::kMessageEnd:
        if (part.field_count > 0) {
          findings_.Add(Oddity::kCutHeader,
                        At(message_.fields[part.first_field + part.field_count - 1].line));
        }
    }
  }

  void CheckMultipart(const RawPart& part) {
    if (part.kind != RawKind::kMultipart || part.header_end == HeaderEnd::kMessageEnd) return;
    const Place place = At(FindField(message_, part, "Content-Type")->line);
    if (!part.boundary) {
      findings_.Add(Oddity::kNoBoundary, place);
      return;
    }
    const std::string boundary = SafeText(*part.boundary, Lines::kOne);
    if (!part.has_parts) {
      findings_.Add(Oddity::kEmptyMultipart, place, {boundary});
    } else if (!part.is_closed) {
      const std::string end = part.last_line == kNoLine ? std::string("the end of the message")
                                                        : "line " + std::to_string(part.last_line);
      findings_.Add(Oddity::kUnterminatedMultipart, place, {boundary, end});
    }
  }

  void CheckRepeatedFields(const RawPart& part) {
    struct Seen {
      std::size_t count = 0;
      std::size_t line = kNoLine;  // of the second
    };
    std::unordered_map<std::string_view, Seen> seen;
    for (std::size_t i = 0; i < part.field_count; ++i) {
      const RawField& field = message_.fields[part.first_field + i];
      const std::string_view name = OnceName(field.name);
      if (name.empty() || !MeansSomething(name, part)) continue;
      Seen& times = seen[name];
      if (++times.count == 2) times.line = field.line;
    }
    for (const auto& [name, times] : seen) {
      if (times.count < 2) continue;
      findings_.Add(Oddity::kRepeatedField, At(times.line),
                    {name, std::to_string(times.count), name == kDate ? "last" : "first"});
    }
  }

  void CheckField(const RawPart& part, const RawField& field) {
    if (field.value.find('\0') != std::string_view::npos) {
      findings_.Add(Oddity::kZeroByteInField, At(field.line), {field.name});
    }
    if (part.is_message && SameName(field.name, kDate)) CheckDate(field);
    FindInWords(field, At(field.line), &findings_);
  }

  void CheckDate(const RawField& field) {
    const std::string value = Unfolded(field.value);
    const DateFault fault = FindDateFault(value);
    if (fault == DateFault::kNone) return;
    findings_.Add(fault == DateFault::kNoDate ? Oddity::kBadDate : Oddity::kEarlyYear,
                  At(field.line), {Quoted(value)});
  }

  void CheckLostParts() {
    if (message_.rest != RestOfParts::kLost) return;
    index_ = message_.known;
    const std::size_t count = message_.parts.size() - message_.known;
    if (count == 0) return;
    const std::string what =
        count == 1 ? "this part is" : "the " + std::to_string(count) + " parts from here on are";
    findings_.Add(Oddity::kLostParts, At(message_.parts[index_].line), {what});
  }

  const RawMessage& message_;
  Findings& findings_;
  std::size_t index_ = 0;
};

}  // namespace

void FindInSource(const RawMessage& message, Findings* findings) {
  Search(message, findings).Run();
}

}  // namespace zqv::cli
