// `zqv show`: a message as somebody who wants to read it sees it.
//
// Labelled lines first, then an empty line and the plain text.
#include <algorithm>
#include <string>
#include <vector>

#include "cli/addresses.h"
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
  const PartTree tree(email);
  const std::vector<Attached> attached = ListAttached(email, tree);
  PrintEntries(SummaryOf(email, tree, attached), output);
  const std::string text = SafeText(ReadablePlainText(email, attached), Lines::kMany);
  if (text.empty()) return;
  output->PrintLine("");
  output->Print(text);
  if (text.back() != '\n') output->PrintLine("");
}

JsonValue DescribeAttached(const std::vector<Attached>& all, bool is_inline, const PartTree& tree) {
  JsonValue list = JsonValue::array();
  for (const Attached& attached : all) {
    if (attached.is_inline != is_inline) continue;
    list.push_back({{"part", attached.part ? JsonValue(tree.Number(*attached.part)) : JsonValue()},
                    {"filename", LineOrNull(TextMember(attached.record, "Filename"))},
                    {"mime_type", LineOrNull(TextMember(attached.record, "MimeType"))},
                    {"bytes", TextMember(attached.record, "Data").bytes().size()}});
  }
  return list;
}

JsonValue DescribeSummary(const Object& email) {
  const PartTree tree(email);
  const std::vector<Attached> attached = ListAttached(email, tree);
  const Object header = ObjectMember(email, "Header");
  const standin::String html = TextMember(email, "HTMLText");
  const standin::String plain = ReadablePlainText(email, attached);
  JsonValue summary = {
      {"subject", LineOrNull(TextMember(email, "Subject"))},
      {"date", TextOrNull(DateText(ObjectMember(email, "Date")))},
      {"received_date", TextOrNull(DateText(ObjectMember(email, "ReceivedDate")))},
  };
  for (const AddressField& row : kAddressFields) {
    summary[row.key] = AddressLines(header, row.property, row.field);
  }
  summary["html_bytes"] = html.IsNil() ? JsonValue() : JsonValue(html.bytes().size());
  summary["parts"] = tree.parts().size() - 1;
  summary["attachments"] = DescribeAttached(attached, false, tree);
  summary["inlines"] = DescribeAttached(attached, true, tree);
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
