#include "cli/check_source.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/ascii.h"
#include "cli/check_encoded_words.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "cli/written_date.h"

namespace zqv::cli {
namespace {

using base::EqualsIgnoringCase;
using mime::FieldName;
using mime::HeaderEnd;
using mime::Part;
using mime::PartKind;

// Fields that may occur only once in a header (RFC 5322, section 3.6; RFC 2045, section 3; RFC
// 2183, section 2). Fields that begin with Content- are checked in every header, the others in the
// header of a message only.
constexpr std::string_view kSingleFields[] = {
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

// Returns the name as it is spelt in kSingleFields. Empty for other fields.
std::string_view SingleFieldName(std::string_view name) {
  const auto found =
      std::find_if(std::begin(kSingleFields), std::end(kSingleFields),
                   [&](std::string_view once) { return EqualsIgnoringCase(once, name); });
  return found == std::end(kSingleFields) ? std::string_view() : *found;
}

// Finds the first line of a header that ends with a single CR, if the header also has other line
// ends. Null when there is none.
const char* LoneCrLine(std::string_view header) {
  const char* lone = nullptr;
  bool has_other_ends = false;
  ForEachLine(header, [&](std::string_view line, std::string_view line_end) {
    if (line_end != "\r") {
      has_other_ends = has_other_ends || !line_end.empty();
    } else if (lone == nullptr) {
      lone = line.data();
    }
  });
  return has_other_ends ? lone : nullptr;
}

// Finds the line at which the last field begins, in a header that ends with the message. Null when
// it has no field.
const char* LastFieldLine(std::string_view header) {
  const char* last = nullptr;
  ForEachLine(header, [&](std::string_view line, std::string_view) {
    if (!base::IsBlank(line.front()) && line.front() != ':') last = line.data();
  });
  return last;
}

class SourceChecker {
 public:
  SourceChecker(const MessageSource& source, bool fits, Findings* findings)
      : source_(source),
        fits_(fits),
        findings_(*findings),
        boundaries_in_headers_(BoundariesInHeaders(source)) {
    for (const std::string_view line : boundaries_in_headers_) lines_in_headers_.insert(Trim(line));
  }

  void Run() {
    for (index_ = 0; index_ < source_.parts().size(); ++index_) {
      const Part& part = source_.parts()[index_];
      CheckHeaderEnd(part);
      CheckMultipart(part);
      CheckRepeatedFields(part);
      for (std::size_t i = 0; i < part.field_count; ++i) CheckField(part, FieldAt(part, i));
    }
    CheckLostParts();
  }

 private:
  // A place in the current part.
  Place At(std::size_t line) const {
    return {fits_ && index_ < source_.known() ? std::optional(index_) : std::nullopt, line};
  }
  Place At(const char* at) const { return At(source_.lines().At(at)); }
  Place At(const mime::Field& field) const { return At(source_.LineOf(field)); }

  const mime::Field& FieldAt(const Part& part, std::size_t index) const {
    return source_.message().fields()[part.first_field + index];
  }

  // Null for the message itself.
  const Part* ParentOf(const Part& part) const {
    return part.parent == mime::kNoPart ? nullptr : &source_.parts()[part.parent];
  }

  // Whether the part is the message itself or an attached message.
  bool IsMessage(const Part& part) const {
    const Part* const parent = ParentOf(part);
    return parent == nullptr || parent->kind == PartKind::kMessage;
  }

  // Whether the part is an attached message whose header cannot be parsed: the message is encoded
  // in base64, or it begins within the line that ended the header before it.
  bool HasNoHeader(const Part& part) const {
    const Part* const parent = ParentOf(part);
    if (parent == nullptr || parent->kind != PartKind::kMessage) return false;
    if (parent->header_end == HeaderEnd::kOtherLine) return true;
    const mime::Header header = source_.message().HeaderOf(*parent);
    return EqualsIgnoringCase(Trim(header.Text(FieldName::kContentTransferEncoding)), "base64");
  }

  void CheckHeaderEnd(const Part& part) {
    if (HasNoHeader(part)) return;
    const std::string_view boundary = boundaries_in_headers_[index_];
    if (const char* lone = LoneCrLine(part.header)) findings_.Add(FindingKind::kLoneCr, At(lone));
    if (boundary.data() != nullptr) {
      findings_.Add(FindingKind::kDelimiterInHeader, At(boundary.data()), {Quoted(boundary)});
      return;
    }
    const char* const end = part.header.data() + part.header.size();
    switch (part.header_end) {
      case HeaderEnd::kEmptyLine:
        break;
      case HeaderEnd::kOtherLine:
        findings_.Add(FindingKind::kNoBlankLine, At(end),
                      {Quoted(source_.lines().RestOfLine(end))});
        break;
      case HeaderEnd::kMessageEnd:
        if (const char* last = LastFieldLine(part.header)) {
          findings_.Add(FindingKind::kCutHeader, At(last));
        }
    }
  }

  void CheckMultipart(const Part& part) {
    if (part.kind != PartKind::kMultipart || part.header_end == HeaderEnd::kMessageEnd) return;
    const Place place = At(*source_.message().HeaderOf(part).Find(FieldName::kContentType));
    const std::string boundary = SafeText(part.boundary, Lines::kOne);
    if (boundary.empty()) {
      findings_.Add(FindingKind::kNoBoundary, place);
    } else if (part.first_child == mime::kNoPart) {
      findings_.Add(FindingKind::kEmptyMultipart, place, {boundary});
    } else if (!part.is_closed && lines_in_headers_.count("--" + boundary + "--") == 0) {
      const std::size_t line = source_.LineAfter(part);
      const std::string end =
          line == kNoLine ? std::string("the end of the message") : "line " + std::to_string(line);
      findings_.Add(FindingKind::kUnterminatedMultipart, place, {boundary, end});
    }
  }

  void CheckRepeatedFields(const Part& part) {
    struct Seen {
      std::size_t count = 0;
      std::size_t line = kNoLine;  // of the second occurrence
    };
    std::unordered_map<std::string_view, Seen> seen;
    for (std::size_t i = 0; i < part.field_count; ++i) {
      const mime::Field& field = FieldAt(part, i);
      const std::string_view name = SingleFieldName(field.name);
      if (name.empty() || !AppliesTo(name, part)) continue;
      Seen& times = seen[name];
      if (++times.count == 2) times.line = source_.LineOf(field);
    }
    for (const auto& [name, times] : seen) {
      if (times.count < 2) continue;
      findings_.Add(FindingKind::kRepeatedField, At(times.line),
                    {name, std::to_string(times.count), name == kDate ? "last" : "first"});
    }
  }

  bool AppliesTo(std::string_view name, const Part& part) const {
    return IsMessage(part) || EqualsIgnoringCase(name.substr(0, kOfContent.size()), kOfContent);
  }

  void CheckField(const Part& part, const mime::Field& field) {
    const std::string_view value = ValueBytes(field);
    if (value.find('\0') != std::string_view::npos) {
      findings_.Add(FindingKind::kZeroByteInField, At(field), {field.name});
    }
    if (IsMessage(part) && field.known == FieldName::kDate) CheckDate(field);
    CheckEncodedWords(field.name, value, At(field), &findings_);
  }

  void CheckDate(const mime::Field& field) {
    const std::string value = Unfolded(ValueBytes(field));
    const DateFault fault = FindDateFault(value);
    if (fault == DateFault::kNone) return;
    findings_.Add(fault == DateFault::kNoDate ? FindingKind::kBadDate : FindingKind::kEarlyYear,
                  At(field), {Quoted(value)});
  }

  void CheckLostParts() {
    const std::size_t count = source_.parts().size() - source_.known();
    if (!fits_ || count == 0) return;
    index_ = source_.known();
    const std::string what =
        count == 1 ? "this part is" : "the " + std::to_string(count) + " parts from here on are";
    findings_.Add(FindingKind::kLostParts, At(source_.LineOf(source_.parts()[index_])), {what});
  }

  const MessageSource& source_;
  const bool fits_;
  Findings& findings_;
  const std::vector<std::string_view> boundaries_in_headers_;  // by part
  // The lines of `boundaries_in_headers_` without blanks at their ends.
  std::unordered_set<std::string_view> lines_in_headers_;
  std::size_t index_ = 0;
};

}  // namespace

void CheckSource(const MessageSource& source, bool fits, Findings* findings) {
  SourceChecker(source, fits, findings).Run();
}

}  // namespace zqv::cli
