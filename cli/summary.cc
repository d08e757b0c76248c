#include "cli/summary.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>

#include "cli/addresses.h"
#include "cli/header_reading.h"
#include "cli/table.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

// Formats a number property of a host's Date, with leading zeros.
std::string DateField(const Object& date, std::string_view property, std::size_t digits) {
  const auto number = std::get<std::int64_t>(standin::Get(date, property));
  if (number < 0) --digits;  // the year is negative
  const std::string text = std::to_string(number < 0 ? -number : number);
  const std::string sign(number < 0 ? "-" : "");
  return sign + std::string(digits - std::min(digits, text.size()), '0') + text;
}

// Lists the attachments or inline parts: first their number, then a line for each with name, type
// and size.
std::vector<std::string> AttachedLines(const MailReading& reading, bool is_inline) {
  std::vector<const FoundFile*> chosen;
  for (const FoundFile& file : reading.files().list()) {
    if (IsListed(file, is_inline)) chosen.push_back(&file);
  }
  if (chosen.empty()) return {};
  std::vector<std::string> lines = {std::to_string(chosen.size())};
  const auto row = [&](std::size_t i) {
    const FoundFile& file = *chosen[i];
    const std::string_view type =
        file.mime_type.empty() ? PackingName(file.packing) : std::string_view(file.mime_type);
    return Row{SafeText(std::string_view(file.name), Lines::kOne), SafeText(type, Lines::kOne),
               ByteCount(reading.files().Data(file).bytes().size())};
  };
  FormatTable({Align::kLeft, Align::kLeft, Align::kRight}, chosen.size(), row,
              [&](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

std::vector<std::string> Safe(std::vector<std::string> lines) {
  for (std::string& line : lines) line = SafeText(std::string_view(line), Lines::kOne);
  return lines;
}

// The date as the sender wrote it, and the date that the library returns.
std::vector<std::string> DateLines(const Object& email, const MessageSource& source) {
  std::vector<std::string> lines;
  if (const std::optional<WrittenDate> date = DateOf(source)) lines.push_back(Rfc3339(*date));
  const std::string given = DateText(ObjectMember(email, "Date"));
  if (!given.empty()) lines.push_back(given + " as the classes give it");
  return lines;
}

class Entries {
 public:
  void Add(const char* label, std::vector<std::string> lines) {
    if (!lines.empty()) list_.push_back({label, std::move(lines)});
  }
  void Add(const char* label, const std::string& line) {
    if (!line.empty()) list_.push_back({label, {line}});
  }
  std::vector<SummaryEntry> Take() { return std::move(list_); }

 private:
  std::vector<SummaryEntry> list_;
};

}  // namespace

std::string DateText(const Object& date) {
  if (date.IsNil()) return {};
  return DateField(date, "Year", 4) + "-" + DateField(date, "Month", 2) + "-" +
         DateField(date, "Day", 2) + " " + DateField(date, "Hour", 2) + ":" +
         DateField(date, "Minute", 2) + ":" + DateField(date, "Second", 2);
}

std::vector<SummaryEntry> SummaryOf(const Object& email, const PartTree& tree,
                                    const MailReading& reading) {
  const MessageSource& source = reading.source();
  const String html = TextMember(email, "HTMLText");
  const std::size_t part_count = tree.parts().size() - 1;
  Entries entries;
  entries.Add("Subject", SafeText(std::string_view(WrittenText(source, "Subject")), Lines::kOne));
  entries.Add("Date", DateLines(email, source));
  entries.Add("Received", DateText(ObjectMember(email, "ReceivedDate")));
  for (const AddressField& row : kAddressFields) {
    entries.Add(row.field, Safe(AddressLines(source, row.field)));
  }
  if (!html.IsNil()) entries.Add("HTML", ByteCount(html.bytes().size()));
  if (part_count > 0) entries.Add("Parts", std::to_string(part_count));
  entries.Add("Attachments", AttachedLines(reading, false));
  entries.Add("Inline parts", AttachedLines(reading, true));
  return entries.Take();
}

std::string WrittenText(const MessageSource& source, std::string_view name) {
  return ReadHeaderText(WrittenField(source, 0, name));
}

std::optional<WrittenDate> DateOf(const MessageSource& source) {
  return ReadWrittenDate(WrittenField(source, 0, "Date"));
}

bool IsListed(const FoundFile& file, bool is_inline) {
  return !file.is_structural && file.is_inline == is_inline;
}

String ReadablePlainText(const Object& email, const MailReading& reading) {
  String text = TextMember(email, "PlainText");
  if (text.bytes().find('\0') == std::string_view::npos) return text;
  const std::vector<FoundFile>& files = reading.files().list();
  const bool is_file = std::any_of(files.begin(), files.end(), [&](const FoundFile& file) {
    return !file.is_structural && reading.files().Data(file).bytes() == text.bytes();
  });
  return is_file ? String() : text;
}

}  // namespace zqv::cli
