#include "cli/summary.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>

#include "cli/addresses.h"
#include "cli/table.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

// A number of the host's own Date, with zeros in front.
std::string DateField(const Object& date, std::string_view property, std::size_t digits) {
  const auto number = std::get<std::int64_t>(standin::Get(date, property));
  if (number < 0) --digits;  // a year before the first
  const std::string text = std::to_string(number < 0 ? -number : number);
  const std::string sign(number < 0 ? "-" : "");
  return sign + std::string(digits - std::min(digits, text.size()), '0') + text;
}

// The number, then a line for each: name, type, size.
std::vector<std::string> AttachedLines(const std::vector<Attached>& all, bool is_inline) {
  std::vector<const Attached*> chosen;
  for (const Attached& attached : all) {
    if (attached.is_inline == is_inline) chosen.push_back(&attached);
  }
  if (chosen.empty()) return {};
  std::vector<std::string> lines = {std::to_string(chosen.size())};
  const auto row = [&](std::size_t i) {
    const Object& record = chosen[i]->record;
    return Row{SafeLine(TextMember(record, "Filename")), SafeLine(TextMember(record, "MimeType")),
               ByteCount(TextMember(record, "Data").bytes().size())};
  };
  FormatTable({Align::kLeft, Align::kLeft, Align::kRight}, chosen.size(), row,
              [&](std::string_view line) { lines.emplace_back(line); });
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
                                    const std::vector<Attached>& attached) {
  const Object header = ObjectMember(email, "Header");
  const String html = TextMember(email, "HTMLText");
  const std::size_t part_count = tree.parts().size() - 1;
  Entries entries;
  entries.Add("Subject", SafeLine(TextMember(email, "Subject")));
  entries.Add("Date", DateText(ObjectMember(email, "Date")));
  entries.Add("Received", DateText(ObjectMember(email, "ReceivedDate")));
  for (const AddressField& row : kAddressFields) {
    entries.Add(row.field, AddressLines(header, row.property, row.field));
  }
  if (!html.IsNil()) entries.Add("HTML", ByteCount(html.bytes().size()));
  if (part_count > 0) entries.Add("Parts", std::to_string(part_count));
  entries.Add("Attachments", AttachedLines(attached, false));
  entries.Add("Inline parts", AttachedLines(attached, true));
  return entries.Take();
}

String ReadablePlainText(const Object& email, const std::vector<Attached>& attached) {
  String text = TextMember(email, "PlainText");
  if (text.bytes().find('\0') == std::string_view::npos) return text;
  const bool is_attached = std::any_of(attached.begin(), attached.end(), [&](const Attached& a) {
    return TextMember(a.record, "Data").bytes() == text.bytes();
  });
  return is_attached ? String() : text;
}

}  // namespace zqv::cli
