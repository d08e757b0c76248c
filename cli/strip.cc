// `zqv strip`: a message without its files, its bytes as they are.
//
// What goes is what goes for applications (email/strip.h). They get the result as text, in which
// bytes that are not UTF-8 would not come through; so it is made from the message's bytes here.
#include "email/strip.h"

#include <algorithm>
#include <string>

#include "cli/attached_files.h"
#include "cli/message.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

// Whether a text of the message is more than blank lines.
bool HasText(std::string_view bytes) {
  const MailReading reading(bytes);
  const FoundFiles& files = reading.files();
  const auto is_there = [&](mime::PartIndex part) {
    return part != mime::kNoPart &&
           files.Data(files.Describe(part)).bytes().find_first_not_of(" \t\r\n") !=
               std::string_view::npos;
  };
  return is_there(files.plain_text()) || is_there(files.html_text());
}

}  // namespace

int Strip(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const String source = TextMember(email, "Source");
    std::string stripped = email::WriteWithoutFiles(source.bytes());
    if (!request.raw) {
      std::replace(stripped.begin(), stripped.end(), '\r', '\n');
      if (!stripped.empty() && stripped.back() != '\n') stripped += '\n';
    }
    const bool is_seen = !request.raw && Output::IsTerminal();
    output->Print(is_seen ? SafeText(std::string_view(stripped), Lines::kMany) : stripped);
    if (HasText(source.bytes()) && !HasText(stripped)) {
      Complain(file + ": its text was left out, too: it is marked as inline or attachment");
    }
    const bool is_whole = source.bytes().find('\0') == std::string_view::npos;
    if (!is_whole) Complain(file + ": what follows the first zero byte was left out");
    return is_whole;
  };
  return ForOneMessage(session, request, visit);
}

}  // namespace zqv::cli
