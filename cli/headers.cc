// `zqv headers`: the fields of a header as the library gives them, one "Name: value" a line.
#include "cli/message.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

using standin::Object;

// How many fields of this name there were; an empty name stands for every name.
std::size_t PrintFields(const Object& header, const std::string& wanted, Output* output) {
  std::size_t count = 0;
  for (const Object& field : FieldsOf(header)) {
    const standin::String name = TextMember(field, "Name");
    if (!wanted.empty() && !standin::SameName(name.bytes(), wanted)) continue;
    ++count;
    const std::string line = SafeLine(name) + ": " + SafeLine(TextMember(field, "Value"));
    output->PrintLine(Trim(line));
  }
  return count;
}

}  // namespace

int Headers(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const Object part = FindPart(email, request.part);
    if (part.IsNil()) {
      Complain(file + ": there is no part " + request.part);
      return false;
    }
    const std::size_t count = PrintFields(ObjectMember(part, "Header"), request.field, output);
    if (count > 0 || request.field.empty()) return true;
    Complain(file + ": there is no field " + request.field);
    return false;
  };
  return ForEachFile(session, request.inputs, output, visit);
}

}  // namespace zqv::cli
