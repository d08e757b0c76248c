// `zqv show`: prints a message for a person who wants to read it.
//
// Labelled lines come first, then an empty line and the plain text.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "cli/addresses.h"
#include "cli/attached_files.h"
#include "cli/message.h"
#include "cli/print_json.h"
#include "cli/summary.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

void PrintEntries(const std::vector<SummaryEntry>& entries, Output* output) {
  std::size_t width = 0;
  for (const SummaryEntry& entry : entries) width = std::max(width, entry.label.size());
  for (const SummaryEntry& entry : entries) {
    std::string front =
        output->Strong(entry.label + ":") + std::string(width + 1 - entry.label.size(), ' ');
    for (const std::string& line : entry.lines) {
      output->PrintLine(front + line);
      front.assign(width + 2, ' ');
    }
  }
}

void ShowMessage(const Object& email, Output* output) {
  const MailReading reading(email);
  PrintEntries(SummaryOf(email, PartTree(email), reading), output);
  const std::string text = SafeText(ReadablePlainText(email, reading), Lines::kMany);
  if (text.empty()) return;
  output->PrintLine("");
  output->Print(text);
  if (text.back() != '\n') output->PrintLine("");
}

JsonValue DescribeFiles(const MailReading& reading, bool is_inline) {
  JsonValue list = JsonValue::array();
  for (const FoundFile& file : reading.files().list()) {
    if (!IsListed(file, is_inline)) continue;
    list.push_back({{"part", reading.source().NumberOf(file.part)},
                    {"filename", TextOrNull(file.name)},
                    {"mime_type", TextOrNull(file.mime_type)},
                    {"bytes", reading.files().Data(file).bytes().size()}});
  }
  return list;
}

JsonValue DescribeSummary(const Object& email) {
  const PartTree tree(email);
  const MailReading reading(email);
  const standin::String html = TextMember(email, "HTMLText");
  const standin::String plain = ReadablePlainText(email, reading);
  const std::optional<WrittenDate> date = DateOf(reading.source());
  JsonValue summary = {
      {"subject", TextOrNull(WrittenText(reading.source(), "Subject"))},
      {"date", TextOrNull(DateText(ObjectMember(email, "Date")))},
      {"date_written", date ? JsonValue(Rfc3339(*date)) : JsonValue()},
      {"date_utc", date ? JsonValue(Rfc3339Utc(*date)) : JsonValue()},
      {"received_date", TextOrNull(DateText(ObjectMember(email, "ReceivedDate")))},
  };
  for (const AddressField& row : kAddressFields) {
    summary[row.key] = AddressLines(reading.source(), row.field);
  }
  summary["html_bytes"] = html.IsNil() ? JsonValue() : JsonValue(html.bytes().size());
  summary["parts"] = tree.parts().size() - 1;
  summary["attachments"] = DescribeFiles(reading, false);
  summary["inlines"] = DescribeFiles(reading, true);
  summary["plain_text"] = plain.IsNil() ? JsonValue() : JsonValue(DataText(plain));
  return summary;
}

}  // namespace

int Show(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    if (request.json) {
      PrintDocument(name, "summary", DescribeSummary(email), output);
    } else {
      ShowMessage(email, output);
    }
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
