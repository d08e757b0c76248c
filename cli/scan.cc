// `zqv scan`: prints one row for each message, as a table, as CSV or as lines of JSON.
//
// Rows are printed as soon as they are made, so that memory does not grow with their number.
// Therefore the widths of the table's columns depend on the terminal and not on the contents.
#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/addresses.h"
#include "cli/attached_files.h"
#include "cli/check_message.h"
#include "cli/findings.h"
#include "cli/header_reading.h"
#include "cli/mail_text.h"
#include "cli/message.h"
#include "cli/print_json.h"
#include "cli/sha256.h"
#include "cli/summary.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"
#include "cli/workers.h"

namespace zqv::cli {
namespace {

using standin::Object;

constexpr std::size_t kColumns = 7;
using Cells = std::array<std::string, kColumns>;
constexpr std::array<const char*, kColumns> kNames = {"file",  "date",        "from",    "subject",
                                                      "bytes", "attachments", "findings"};

// The facts about one message that a row shows.
class Scanned {
 public:
  Scanned(const std::string& name, const Object& email)
      : name_(name),
        bytes_(TextMember(email, "Source")),
        reading_(bytes_.bytes()),
        date_(DateOf(reading_.source())) {
    const PartTree tree(email);
    findings_ = CheckMessage(email, tree, ListAttached(email, tree));
  }

  Cells Row() const {
    return {name_,
            date_ ? Rfc3339(*date_) : std::string(),
            Joined(AddressLines(reading_.source(), "From")),
            WrittenText(reading_.source(), "Subject"),
            std::to_string(bytes_.bytes().size()),
            std::to_string(CountAttachments()),
            std::to_string(findings_.size())};
  }

  JsonValue Describe() const {
    const MessageSource& source = reading_.source();
    const auto text = [&](const char* field) { return TextOrNull(WrittenText(source, field)); };
    JsonValue row = {
        {"format_version", kDocumentVersion},
        {"file", SafeText(std::string_view(name_), Lines::kOne)},
        {"date", date_ ? JsonValue(Rfc3339(*date_)) : JsonValue()},
        {"date_utc", date_ ? JsonValue(Rfc3339Utc(*date_)) : JsonValue()},
        {"from", AddressLines(source, "From")},
        {"to", AddressLines(source, "To")},
        {"cc", AddressLines(source, "Cc")},
        {"subject", text("Subject")},
        {"message_id", text("Message-ID")},
        {"in_reply_to", Words("In-Reply-To")},
        {"references", Words("References")},
        {"bytes", bytes_.bytes().size()},
        {"sha256", Sha256(bytes_.bytes())},
        {"attachments", DescribeFiles()},
    };
    JsonValue& codes = row["findings"] = JsonValue::array();
    for (const Finding& finding : findings_) codes.push_back(finding.code);
    return row;
  }

 private:
  static std::string Joined(const std::vector<std::string>& lines) {
    std::string joined;
    for (const std::string& line : lines) joined += (joined.empty() ? "" : ", ") + line;
    return joined;
  }

  // The message identifiers in a field, separated by blanks.
  std::vector<std::string> Words(const char* field) const {
    std::vector<std::string> words;
    const std::string text = WrittenText(reading_.source(), field);
    for (std::string_view rest = Trim(text); !rest.empty(); rest = Trim(rest)) {
      const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
      words.emplace_back(word);
      rest.remove_prefix(word.size());
    }
    return words;
  }

  std::size_t CountAttachments() const {
    const std::vector<FoundFile>& files = reading_.files().list();
    return static_cast<std::size_t>(std::count_if(
        files.begin(), files.end(), [](const FoundFile& file) { return IsListed(file, false); }));
  }

  JsonValue DescribeFiles() const {
    JsonValue list = JsonValue::array();
    for (const FoundFile& file : reading_.files().list()) {
      if (file.is_structural) continue;
      const email::DecodedBody data = reading_.files().Data(file);
      list.push_back({{"part", reading_.source().NumberOf(file.part)},
                      {"kind", file.is_inline ? "inline" : "attachment"},
                      {"name", TextOrNull(file.name)},
                      {"mime_type", TextOrNull(file.mime_type)},
                      {"bytes", data.bytes().size()},
                      {"sha256", Sha256(data.bytes())}});
    }
    return list;
  }

  const std::string& name_;
  const standin::String bytes_;
  const MailReading reading_;
  const std::optional<WrittenDate> date_;
  std::vector<Finding> findings_;
};

// Formats a cell of CSV (RFC 4180, section 2).
std::string CsvCell(const std::string& cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char c : cell) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

// Formats rows as lines.
class Layout {
 public:
  explicit Layout(ScanForm form) : form_(form) {
    constexpr std::size_t kUsual = 135;
    const std::size_t fixed = kDate + kNumber + kFiles + kFindings + (kColumns - 1) * kGap.size();
    const std::size_t width = Output::Width().value_or(kUsual);
    const std::size_t left = width > fixed ? width - fixed : 0;
    const std::size_t third = std::max(kNarrowest, left * 3 / 10);
    widths_ = {third,   kDate,  third,    std::max(kNarrowest, left - std::min(left, 2 * third)),
               kNumber, kFiles, kFindings};
  }

  // The line with the column names; empty when the format has none.
  std::string Heading(const Output& output) const {
    if (form_ == ScanForm::kJsonLines) return {};
    Cells names;
    for (std::size_t i = 0; i < kColumns; ++i) names[i] = kNames[i];
    if (form_ == ScanForm::kCsv) return CsvLine(names);
    names[5] = "files";
    return output.Strong(TableLine(names));
  }

  std::string Line(const Scanned& scanned) const {
    switch (form_) {
      case ScanForm::kTable:
        return TableLine(scanned.Row());
      case ScanForm::kCsv:
        return CsvLine(scanned.Row());
      case ScanForm::kJsonLines:
        break;
    }
    return JsonLine(scanned.Describe());
  }

 private:
  static constexpr std::size_t kDate = 25;
  static constexpr std::size_t kNumber = 9;
  static constexpr std::size_t kFiles = 5;
  static constexpr std::size_t kFindings = 8;
  static constexpr std::size_t kNarrowest = 7;  // so that the table fits 80 columns
  static constexpr std::string_view kGap = "  ";

  static std::string CsvLine(const Cells& cells) {
    std::string line;
    for (const std::string& cell : cells) line += (line.empty() ? "" : ",") + CsvCell(cell);
    return line;
  }

  std::string TableLine(const Cells& cells) const {
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
      std::string cell = SafeText(std::string_view(cells[i]), Lines::kOne);
      if (cell.empty()) cell = "-";
      cell = CutToWidth(cell, widths_[i]);
      const std::size_t width = DisplayWidth(cell);
      const std::string padding(widths_[i] - std::min(width, widths_[i]), ' ');
      const bool is_number = i >= 4;
      if (i > 0) line += kGap;
      line += is_number ? padding + cell : cell + padding;
    }
    return line;
  }

  const ScanForm form_;
  std::array<std::size_t, kColumns> widths_{};
};

// Prints lines in the order of their numbers, in whatever order they arrive.
class InOrder {
 public:
  explicit InOrder(Output* output) : output_(*output) {}

  // Adds a line. An empty line is not printed, but its number counts.
  void Add(std::size_t number, std::string line) {
    waiting_.emplace(number, std::move(line));
    for (auto first = waiting_.begin(); first != waiting_.end() && first->first == next_;
         first = waiting_.erase(first), ++next_) {
      if (!first->second.empty()) output_.PrintLine(first->second);
    }
  }

 private:
  Output& output_;
  std::map<std::size_t, std::string> waiting_;
  std::size_t next_ = 0;
};

// Returns the line of a message, or "!" and the reason of a failure.
std::string Attempt(const Session& session, const Layout& layout, const Item& item) {
  try {
    return layout.Line(Scanned(item.name, session.Open(item)));
  } catch (const std::exception& error) {
    return std::string("!") + ReasonOf(error);
  }
}

class Run {
 public:
  Run(const Session& session, const Request& request, Output* output)
      : session_(session),
        request_(request),
        layout_(request.scan_form),
        output_(*output),
        rows_(output) {}

  int Go() {
    const std::string heading = layout_.Heading(output_);
    if (!heading.empty()) output_.PrintLine(heading);
    const bool all_read = request_.jobs == 1 ? RunAlone() : RunWithWorkers();
    return all_read && all_good_ ? 0 : 1;
  }

 private:
  bool RunAlone() {
    return ForEachChosen(session_, request_, [&](Item&& item) {
      Take(item.name, count_++, Attempt(session_, layout_, item));
      return output_.IsGood();
    });
  }

  bool RunWithWorkers() {
    Workers workers(
        request_.jobs,
        [&](const Parcel& piece) {
          return Parcel{Attempt(session_, layout_, ItemOf(WithoutNumber(piece)))};
        },
        [&](const Parcel& piece, const Parcel& result) {
          Take(piece[1], std::stoul(piece[0]), result[0]);
        },
        [&](const Parcel& piece, const std::string& reason) {
          Take(piece[1], std::stoul(piece[0]), "!" + reason);
        });
    const bool all_read = ForEachChosen(session_, request_, [&](Item&& item) {
      Parcel piece = ParcelOf(item);
      piece.insert(piece.begin(), std::to_string(count_++));
      workers.Submit(std::move(piece));
      return output_.IsGood();
    });
    workers.Finish();
    return all_read;
  }

  static Parcel WithoutNumber(const Parcel& piece) {
    return Parcel(piece.begin() + 1, piece.end());
  }

  void Take(const std::string& name, std::size_t number, const std::string& line) {
    const bool is_good = line.front() != '!';
    if (!is_good) {
      Complain(name + ": " + line.substr(1));
      all_good_ = false;
    }
    rows_.Add(number, is_good ? line : std::string());
  }

  const Session& session_;
  const Request& request_;
  const Layout layout_;
  Output& output_;
  InOrder rows_;
  std::size_t count_ = 0;
  bool all_good_ = true;
};

}  // namespace

int Scan(const Session& session, const Request& request, Output* output) {
  return Run(session, request, output).Go();
}

}  // namespace zqv::cli
