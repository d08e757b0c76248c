// `zqv check`: prints the findings about messages, one on each line.
//
// Columns: part, line in the bytes of the message, text. With several messages, those without
// findings are not named; in JSON they have an empty list.
#include <string>
#include <string_view>
#include <vector>

#include "cli/check_message.h"
#include "cli/findings.h"
#include "cli/message.h"
#include "cli/print_json.h"
#include "cli/table.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

void PrintFindings(const std::vector<Finding>& findings, const PartTree& tree, Output* output) {
  const auto row = [&](std::size_t i) {
    const Finding& finding = findings[i];
    return Row{PartText(finding.place, tree), LineText(finding.place), finding.text};
  };
  FormatTable({Align::kLeft, Align::kLeft, Align::kLeft}, findings.size(), row,
              [&](std::string_view line) { output->PrintLine(line); });
}

JsonValue DescribeFindings(const std::vector<Finding>& findings, const PartTree& tree) {
  JsonValue list = JsonValue::array();
  for (const Finding& finding : findings) {
    const Place& place = finding.place;
    list.push_back({{"code", finding.code},
                    {"part", place.part ? JsonValue(tree.Number(*place.part)) : JsonValue()},
                    {"line", place.line != kNoLine ? JsonValue(place.line) : JsonValue()},
                    {"text", finding.text}});
  }
  return list;
}

}  // namespace

int Check(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    const PartTree tree(email);
    const std::vector<Finding> findings = CheckMessage(email, tree, ListAttached(email, tree));
    if (request.json) {
      PrintDocument(name, "findings", DescribeFindings(findings, tree), output);
    } else {
      PrintFindings(findings, tree, output);
    }
    return findings.empty();
  };
  const int code = ForEachMessage(session, request, output, visit, Headings::kAboveSomething);
  if (code == 0 && !request.json) output->PrintLine("no findings");
  return code;
}

}  // namespace zqv::cli
