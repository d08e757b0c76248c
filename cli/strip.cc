// `zqv strip`: prints a message without its files, otherwise unchanged.
//
// It removes the same parts as the library does for applications (email/strip.h). Applications get
// the result as text, which cannot contain bytes that are not UTF-8; so the program calls the core
// directly.
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

// Whether one of the message's texts has more than blank lines.
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
