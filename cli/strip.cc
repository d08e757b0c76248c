// `zqv strip`: a message without its files, as the library writes it.
//
// The library reads the source as text. The source of a file is bytes of no known encoding, which
// it would take for Mac Roman; labelled as UTF-8 they pass through as they are.
#include <string>

#include "abi/encodings.h"
#include "cli/message.h"
#include "cli/print_text.h"
#include "cli/verbs.h"
#include "cli/visit.h"
#include "standin/application.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

Object WithUtf8Source(const Object& email) {
  const String source = TextMember(email, "Source");
  if (source.encoding() != abi::kUnknownEncoding) return email;
  return standin::Construct(kEmailClass, "Constructor(Content as string)",
                            standin::MakeString(source.bytes(), abi::kUtf8));
}

}  // namespace

int Strip(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const Object message = WithUtf8Source(email);
    const standin::Value result = standin::Call(message, "SourceWithoutAttachments as String");
    if (const auto* const text = std::get_if<String>(&result)) {
      PrintText(*text, request.raw, output);
    }
    // The library's text ends there.
    const bool is_whole = TextMember(email, "Source").bytes().find('\0') == std::string_view::npos;
    if (!is_whole) Complain(file + ": what follows the first zero byte was left out");
    return is_whole;
  };
  return ForOneMessage(session, request, visit);
}

}  // namespace zqv::cli
