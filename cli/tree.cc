// `zqv tree`: prints a message's entities, children below their parents.
//
// Columns: part number, MIME type indented by depth, size of the decoded body in bytes, file name.
// A multipart has no body of its own.
#include <algorithm>
#include <unordered_map>

#include "cli/attached_files.h"
#include "cli/message.h"
#include "cli/print_table.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

constexpr std::size_t kIndent = 2;
// Deeper parts are not indented any further, since messages may be nested thousands deep. Their
// number still shows the depth.
constexpr std::size_t kDeepestIndent = 20;

std::unordered_map<std::size_t, std::string> NamesByPart(const Object& email) {
  std::unordered_map<std::size_t, std::string> names;
  const MailReading reading(email);
  for (const FoundFile& file : reading.files().list()) {
    if (file.packing == Packing::kNone && !file.is_structural) names.emplace(file.part, file.name);
  }
  return names;
}

std::string SizeOf(const PartTree::Part& part) {
  const standin::String body = TextMember(part.entity, "BodyDecoded");
  if (body.IsNil() && part.has_parts) return {};
  return std::to_string(body.bytes().size());
}

// Indents a type to show its depth to a reader.
std::string IndentedType(const PartTree::Part& part, const std::string& type) {
  return std::string(kIndent * std::min(part.depth, kDeepestIndent), ' ') +
         (type.empty() ? "(no type)" : type);
}

void PrintTree(const std::string& message, const Object& email, bool json, Output* output) {
  const PartTree tree(email);
  const auto names = NamesByPart(email);
  const auto row = [&](std::size_t i) {
    const PartTree::Part& part = tree.parts()[i];
    const auto name = names.find(i);
    const std::string type = MimeTypeOf(ObjectMember(part.entity, "Header"));
    return Row{tree.Number(i), json ? type : IndentedType(part, type), SizeOf(part),
               name == names.end() ? std::string() : name->second};
  };
  PrintTable(message,
             {"parts",
              {{"number", ColumnKind::kText},
               {"mime_type", ColumnKind::kText},
               {"bytes", ColumnKind::kNumber},
               {"filename", ColumnKind::kText}},
              tree.parts().size(),
              row},
             json, output);
}

}  // namespace

int Tree(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    PrintTree(name, email, request.json, output);
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
