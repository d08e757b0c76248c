#include "cli/addresses.h"

#include "base/ascii.h"
#include "cli/message.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

using standin::Object;

// Quoted when it would otherwise read as something else than a name.
std::string DisplayName(const std::string& name) {
  if (name.find_first_of(",;:<>@()\"") == std::string::npos) return name;
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string MailboxText(const Object& mailbox) {
  std::string email = SafeLine(TextMember(mailbox, "Email"));
  const std::string name = SafeLine(TextMember(mailbox, "LabelDecoded"));
  if (name.empty()) return email;
  return DisplayName(name) + " <" + email + ">";
}

// Empty for a group without name and members.
std::string GroupText(const Object& group) {
  std::string members;
  for (const Object& mailbox : ListMember(group, "Mailboxes as MimeMailboxZQV()")) {
    members += (members.empty() ? " " : ", ") + MailboxText(mailbox);
  }
  const std::string name = DisplayName(SafeLine(TextMember(group, "NameDecoded")));
  return name.empty() && members.empty() ? name : name + ":" + members + ";";
}

// Empty for an entry of which nothing was understood.
std::string AddressText(const Object& address) {
  const Object group = ObjectMember(address, "Group");
  if (!group.IsNil()) return GroupText(group);
  const Object mailbox = ObjectMember(address, "Mailbox");
  return mailbox.IsNil() ? std::string() : MailboxText(mailbox);
}

std::vector<std::string> LinesOf(const Object& value) {
  std::vector<std::string> lines;
  if (value.IsNil()) return lines;
  if (value.IsA("MimeMailboxZQV")) lines.push_back(MailboxText(value));
  for (const Object& mailbox : ListMember(value, "Mailboxes as MimeMailboxZQV()")) {
    lines.push_back(MailboxText(mailbox));
  }
  for (const Object& address : ListMember(value, "Addresses as MimeAddressZQV()")) {
    const std::string text = AddressText(address);
    if (!text.empty()) lines.push_back(text);
  }
  return lines;
}

// The field's own text. Of what the library did not understand as an address it leaves the signs
// between addresses alone, which say nothing to a reader.
std::string FieldText(const Object& header, std::string_view name) {
  for (const Object& field : FieldsOf(header)) {
    if (!base::EqualsIgnoringCase(TextMember(field, "Name").bytes(), name)) continue;
    std::string text = SafeLine(TextMember(field, "Value"));
    if (text.find_first_not_of("@,:; ") == std::string::npos) text.clear();
    return text;
  }
  return {};
}

}  // namespace

std::vector<std::string> AddressLines(const Object& header, std::string_view property,
                                      std::string_view field) {
  std::vector<std::string> lines = LinesOf(ObjectMember(header, property));
  if (lines.empty()) {
    const std::string text = FieldText(header, field);
    if (!text.empty()) lines.push_back(text);
  }
  return lines;
}

}  // namespace zqv::cli
