#include "cli/addresses.h"

#include "base/ascii.h"
#include "cli/header_reading.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

// Removes the quotes of a name that needs none, and the brackets of an address without a name.
std::string Bare(const std::string& entry) {
  const std::string mailbox = MailboxOf(entry);
  if (entry == "<" + mailbox + ">") return mailbox;
  const std::size_t close = entry.find('"', 1);
  if (entry.front() != '"' || close == std::string::npos) return entry;
  const std::string_view name = std::string_view(entry).substr(1, close - 1);
  const std::string_view rest = Trim(std::string_view(entry).substr(close + 1));
  const bool is_bare = !Trim(name).empty() && rest.substr(0, 1) == "<" &&
                       name.find_first_of(",;:<>@()\\\"") == std::string_view::npos;
  return is_bare ? std::string(Trim(name)).append(" ").append(rest) : entry;
}

}  // namespace

std::vector<std::string> AddressLines(const MessageSource& source, std::string_view name) {
  std::vector<std::string> lines;
  const mime::Part& message = source.parts().front();
  for (std::size_t i = 0; i < message.field_count; ++i) {
    const mime::Field& field = source.message().fields()[message.first_field + i];
    if (!base::EqualsIgnoringCase(field.name, name)) continue;
    for (const std::string& entry : ReadAddresses(ValueBytes(field))) lines.push_back(Bare(entry));
  }
  return lines;
}

}  // namespace zqv::cli
