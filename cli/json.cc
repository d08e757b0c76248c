// `zqv json`: prints all members of a message's classes.
#include <string>

#include "cli/message_document.h"
#include "cli/print_json.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {

int Json(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const standin::Object& email) {
    output->PrintLine(DocumentText(
        name, "message", MessageDocument(email, request, request.files.value_or(FileForm::kText)),
        request.lines ? DocumentForm::kLine : DocumentForm::kIndented));
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
