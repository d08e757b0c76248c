// `zqv list`: what is attached to a message.
//
// Columns: part number, kind, MIME type, bytes, file name, Content-ID.
#include <string>
#include <vector>

#include "cli/message.h"
#include "cli/print_table.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

void PrintList(const std::string& name, const Object& email, bool json, Output* output) {
  const PartTree tree(email);
  const std::vector<Attached> list = ListAttached(email, tree);
  const auto row = [&](std::size_t i) {
    const Attached& attached = list[i];
    const auto text = [&](std::string_view property) {
      return PlainLine(TextMember(attached.record, property));
    };
    return Row{attached.part ? tree.Number(*attached.part) : std::string(),
               attached.is_inline ? "inline" : "attachment",
               text("MimeType"),
               std::to_string(TextMember(attached.record, "Data").bytes().size()),
               text("Filename"),
               text("contentId")};
  };
  PrintTable(name,
             {"attached",
              {{"part", ColumnKind::kOptional},
               {"kind", ColumnKind::kText},
               {"mime_type", ColumnKind::kOptional},
               {"bytes", ColumnKind::kNumber},
               {"filename", ColumnKind::kOptional},
               {"content_id", ColumnKind::kOptional}},
              list.size(),
              row},
             json, output);
}

}  // namespace

int List(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    PrintList(name, email, request.json, output);
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
