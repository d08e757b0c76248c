// `zqv text` and `zqv html`: print the plain text or the HTML of messages.
#include <string>

#include "cli/message.h"
#include "cli/print_text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

int PrintMember(const Session& session, const Request& request, const char* property,
                const char* name, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const String text = TextMember(email, property);
    PrintText(text, request.raw, output);
    if (text.IsNil()) Complain(file + ": there is no " + name);
    return !text.IsNil();
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace

int Text(const Session& session, const Request& request, Output* output) {
  return PrintMember(session, request, "PlainText", "plain text", output);
}

int Html(const Session& session, const Request& request, Output* output) {
  return PrintMember(session, request, "HTMLText", "HTML", output);
}

}  // namespace zqv::cli
