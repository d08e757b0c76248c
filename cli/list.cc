// `zqv list`: prints the files in messages.
//
// Columns: part number, kind, MIME type, size in bytes, file name, Content-ID, packing.
#include <string>
#include <vector>

#include "cli/attached_files.h"
#include "cli/print_table.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

void PrintList(const std::string& name, const MailReading& reading, const Request& request,
               Output* output) {
  std::vector<const FoundFile*> list;
  for (const FoundFile& file : reading.files().list()) {
    if (request.all || !file.is_structural) list.push_back(&file);
  }
  const auto row = [&](std::size_t i) {
    const FoundFile& file = *list[i];
    return Row{reading.source().NumberOf(file.part),
               file.is_inline ? "inline" : "attachment",
               file.mime_type,
               std::to_string(reading.files().Data(file).bytes().size()),
               file.name,
               file.content_id,
               std::string(PackingName(file.packing))};
  };
  PrintTable(name,
             {"attached",
              {{"part", ColumnKind::kOptional},
               {"kind", ColumnKind::kText},
               {"mime_type", ColumnKind::kOptional},
               {"bytes", ColumnKind::kNumber},
               {"filename", ColumnKind::kOptional},
               {"content_id", ColumnKind::kOptional},
               {"packed_in", ColumnKind::kText}},
              list.size(),
              row},
             request.json, output);
}

}  // namespace

int List(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    PrintList(name, MailReading(email), request, output);
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
