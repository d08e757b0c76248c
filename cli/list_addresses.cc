// `zqv addresses`: prints the mailboxes in the address fields.
//
// Columns: field, e-mail address, name, group. A group without members has a line of its own.
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/addresses.h"
#include "cli/message.h"
#include "cli/print_table.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

class AddressRows {
 public:
  explicit AddressRows(const Object& header) {
    for (const AddressField& field : kAddressFields) {
      field_ = field.field;
      Add(ObjectMember(header, field.property));
    }
  }

  const std::vector<Row>& rows() const { return rows_; }

 private:
  void Add(const Object& value) {
    if (value.IsNil()) return;
    if (value.IsA("MimeMailboxZQV")) AddMailbox(value, {});
    AddMailboxes(value, {});
    for (const Object& address : ListMember(value, "Addresses as MimeAddressZQV()")) {
      const Object mailbox = ObjectMember(address, "Mailbox");
      if (!mailbox.IsNil()) AddMailbox(mailbox, {});
      AddGroup(ObjectMember(address, "Group"));
    }
  }

  void AddGroup(const Object& group) {
    if (group.IsNil()) return;
    const std::string name = PlainLine(TextMember(group, "NameDecoded"));
    if (AddMailboxes(group, name) == 0) AddRow({}, {}, name);
  }

  std::size_t AddMailboxes(const Object& list, const std::string& group) {
    const std::vector<Object> mailboxes = ListMember(list, "Mailboxes as MimeMailboxZQV()");
    for (const Object& mailbox : mailboxes) AddMailbox(mailbox, group);
    return mailboxes.size();
  }

  void AddMailbox(const Object& mailbox, const std::string& group) {
    AddRow(PlainLine(TextMember(mailbox, "Email")), PlainLine(TextMember(mailbox, "LabelDecoded")),
           group);
  }

  void AddRow(const std::string& email, const std::string& name, const std::string& group) {
    rows_.push_back({field_, email, name, group});
  }

  std::string field_;
  std::vector<Row> rows_;
};

}  // namespace

int Addresses(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    const AddressRows addresses(ObjectMember(email, "Header"));
    PrintTable(name,
               {"addresses",
                {{"field", ColumnKind::kText},
                 {"email", ColumnKind::kOptional},
                 {"name", ColumnKind::kOptional},
                 {"group", ColumnKind::kOptional}},
                addresses.rows().size(),
                [&](std::size_t i) { return addresses.rows()[i]; }},
               request.json, output);
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
