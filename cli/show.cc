// `zqv show`: a message as somebody who wants to read it sees it.
//
// Labelled lines first, then an empty line and the plain text. What a message does not have takes
// no line.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>

#include "cli/addresses.h"
#include "cli/message.h"
#include "cli/table.h"
#include "cli/text.h"
#include "cli/verbs.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

struct Entry {
  std::string label;
  std::vector<std::string> lines;  // safe; no lines: no entry
};

std::vector<std::string> LineUnlessEmpty(std::string line) {
  std::vector<std::string> lines;
  if (!line.empty()) lines.push_back(std::move(line));
  return lines;
}

// A number of the host's own Date, with zeros in front.
std::string DateField(const Object& date, std::string_view property, std::size_t digits) {
  const std::string text = std::to_string(std::get<std::int64_t>(standin::Get(date, property)));
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

// "2024-04-16 14:02:05", in the machine's time zone as the library reckons it.
std::string DateText(const Object& date) {
  if (date.IsNil()) return {};
  return DateField(date, "Year", 4) + "-" + DateField(date, "Month", 2) + "-" +
         DateField(date, "Day", 2) + " " + DateField(date, "Hour", 2) + ":" +
         DateField(date, "Minute", 2) + ":" + DateField(date, "Second", 2);
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

std::vector<Entry> EntriesOf(const Object& email, const std::vector<Attached>& attached,
                             std::size_t part_count) {
  const Object header = ObjectMember(email, "Header");
  std::vector<Entry> entries = {
      {"Subject", LineUnlessEmpty(SafeLine(TextMember(email, "Subject")))},
      {"Date", LineUnlessEmpty(DateText(ObjectMember(email, "Date")))},
      {"Received", LineUnlessEmpty(DateText(ObjectMember(email, "ReceivedDate")))},
  };
  for (const AddressField& row : kAddressFields) {
    entries.push_back({row.field, AddressLines(header, row.property, row.field)});
  }
  const String html = TextMember(email, "HTMLText");
  if (!html.IsNil()) entries.push_back({"HTML", {ByteCount(html.bytes().size())}});
  if (part_count > 0) entries.push_back({"Parts", {std::to_string(part_count)}});
  entries.push_back({"Attachments", AttachedLines(attached, false)});
  entries.push_back({"Inline parts", AttachedLines(attached, true)});
  return entries;
}

void PrintEntries(const std::vector<Entry>& entries, Output* output) {
  std::size_t width = 0;
  for (const Entry& entry : entries) {
    if (!entry.lines.empty()) width = std::max(width, entry.label.size());
  }
  for (const Entry& entry : entries) {
    std::string front = entry.label + ":";
    for (const std::string& line : entry.lines) {
      front.resize(width + 2, ' ');
      output->PrintLine(front + line);
      front.clear();
    }
  }
}

// A message that is nothing but a picture, say, has the picture's bytes for its plain text.
bool IsAttachedData(const String& text, const std::vector<Attached>& attached) {
  if (text.bytes().find('\0') == std::string_view::npos) return false;
  return std::any_of(attached.begin(), attached.end(), [&](const Attached& a) {
    return TextMember(a.record, "Data").bytes() == text.bytes();
  });
}

void ShowMessage(const Object& email, Output* output) {
  const PartTree tree(email);
  const std::vector<Attached> attached = ListAttached(email, tree);
  PrintEntries(EntriesOf(email, attached, tree.parts().size() - 1), output);
  const String plain = TextMember(email, "PlainText");
  if (plain.bytes().empty() || IsAttachedData(plain, attached)) return;
  const std::string text = SafeText(plain, Lines::kMany);
  output->PrintLine("");
  output->Print(text);
  if (text.back() != '\n') output->PrintLine("");
}

}  // namespace

int Show(const Session& session, const Request& request, Output* output) {
  return ForEachFile(session, request.inputs, output, [&](const std::string&, const Object& email) {
    ShowMessage(email, output);
    return true;
  });
}

}  // namespace zqv::cli
