#include "cli/filter.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string_view>

#include "cli/addresses.h"
#include "cli/attached_files.h"
#include "cli/check_message.h"
#include "cli/findings.h"
#include "cli/summary.h"
#include "cli/utf8.h"
#include "standin/charset.h"

namespace zqv::cli {
namespace {

// Converts a text to lower case, to compare it without regard to case.
std::u32string LowerCase(std::string_view text) {
  std::u32string lower;
  while (!text.empty()) {
    const CodePoint c = FirstCodePoint(text);
    lower += standin::FoldCase(c.value);
    text.remove_prefix(c.bytes);
  }
  return lower;
}

bool Holds(std::string_view text, const std::string& wanted) {
  return LowerCase(text).find(LowerCase(wanted)) != std::u32string::npos;
}

bool AnyAddressHolds(const MessageSource& source, std::initializer_list<const char*> fields,
                     const std::string& wanted) {
  return std::any_of(fields.begin(), fields.end(), [&](const char* field) {
    const std::vector<std::string> lines = AddressLines(source, field);
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return Holds(line, wanted); });
  });
}

bool HeaderPasses(const Filter& filter, const MessageSource& header) {
  if (!filter.from.empty() && !AnyAddressHolds(header, {"From"}, filter.from)) return false;
  if (!filter.to.empty() && !AnyAddressHolds(header, {"To", "Cc", "Bcc"}, filter.to)) return false;
  if (!filter.subject.empty() && !Holds(WrittenText(header, "Subject"), filter.subject)) {
    return false;
  }
  if (!filter.since && !filter.until) return true;
  const std::optional<WrittenDate> date = DateOf(header);
  return date && SecondsOf(*date) >= filter.since.value_or(INT64_MIN) &&
         SecondsOf(*date) <= filter.until.value_or(INT64_MAX);
}

bool HasAttachment(std::string_view bytes) {
  const MailReading reading(bytes);
  const std::vector<FoundFile>& files = reading.files().list();
  return std::any_of(files.begin(), files.end(),
                     [](const FoundFile& file) { return IsListed(file, false); });
}

bool HasFinding(const Session& session, const Item& item, const std::string& code) {
  const standin::Object email = session.Open(item);
  const PartTree tree(email);
  const std::vector<Finding> findings = CheckMessage(email, tree, ListAttached(email, tree));
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return finding.code == code; });
}

}  // namespace

bool Filter::IsEmpty() const {
  return from.empty() && to.empty() && subject.empty() && !since && !until && !has_attachment &&
         finding.empty();
}

bool Passes(const Filter& filter, const Session& session, const Item& item) {
  if (filter.IsEmpty()) return true;
  try {
    const std::string read = item.bytes ? std::string() : ReadBytes(item.path);
    const std::string_view bytes = item.bytes ? std::string_view(*item.bytes) : read;
    return HeaderPasses(filter, MessageSource(HeaderOf(bytes))) &&
           (!filter.has_attachment || HasAttachment(bytes)) &&
           (filter.finding.empty() || HasFinding(session, item, filter.finding));
  } catch (const std::exception&) {
    return true;
  }
}

}  // namespace zqv::cli
