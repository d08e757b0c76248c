// `zqv list`: what is attached to a message.
//
// Columns: part number, kind, MIME type, bytes, file name, Content-ID; "-" for what is absent, so
// that the columns can be told apart by a program.
#include "cli/message.h"
#include "cli/table.h"
#include "cli/text.h"
#include "cli/verbs.h"

namespace zqv::cli {
namespace {

using standin::Object;

std::string Cell(const Object& record, std::string_view property) {
  std::string text = SafeLine(TextMember(record, property));
  return text.empty() ? "-" : text;
}

void PrintList(const Object& email, Output* output) {
  const PartTree tree(email);
  const std::vector<Attached> list = ListAttached(email, tree);
  const auto row = [&](std::size_t i) {
    const Attached& attached = list[i];
    return Row{attached.part ? tree.Number(*attached.part) : "-",
               attached.is_inline ? "inline" : "attachment",
               Cell(attached.record, "MimeType"),
               std::to_string(TextMember(attached.record, "Data").bytes().size()),
               Cell(attached.record, "Filename"),
               Cell(attached.record, "contentId")};
  };
  FormatTable({Align::kLeft, Align::kLeft, Align::kLeft, Align::kRight, Align::kLeft, Align::kLeft},
              list.size(), row, [&](std::string_view line) { output->PrintLine(line); });
}

}  // namespace

int List(const Session& session, const Request& request, Output* output) {
  return ForEachFile(session, request.inputs, output, [&](const std::string&, const Object& email) {
    PrintList(email, output);
    return true;
  });
}

}  // namespace zqv::cli
