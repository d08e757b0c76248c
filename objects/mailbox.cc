#include "objects/mailbox.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

using host::StringRef;

StringRef Concatenate(abi::REALstring left, abi::REALstring right) {
  return StringRef::Adopt(host::entry::RuntimeAddString(left, right));
}

// "mailbox@domain"; nil when both are nil, or when the host cannot concatenate strings.
StringRef Email(const MimeMailboxClassData& record) {
  if (!record.Mailbox && !record.Domain) return {};
  const StringRef at = host::BuildString("@", abi::kAscii);
  const StringRef front = Concatenate(record.Mailbox.get(), at.get());
  return Concatenate(front.get(), record.Domain.get());
}

}  // namespace

void Set(MimeMailboxClassData& record, const mime::Mailbox& mailbox) {
  record.StringValue.Put(host::BuildDetectedText(mailbox.text));
  record.Mailbox.Put(host::BuildDetectedText(mailbox.local_part));
  record.Domain.Put(host::BuildDetectedText(mailbox.domain));
  record.Label.Put(host::BuildDetectedText(mailbox.label));
  record.LabelDecoded.Put(DecodeInlineEncodings(mailbox.label, true));
  record.Sourceroute.Put(host::BuildDetectedText(mailbox.source_route));
}

host::ArrayRef NewMailboxArray(mime::MailboxRange mailboxes) {
  host::ArrayRef array = host::NewObjectArray();
  if (!array) return array;
  host::NewListFiller filler(array.get());
  for (const mime::Mailbox& mailbox : mailboxes) {
    if (mailbox.local_part.empty()) continue;
    const host::ObjectRef object = NewFilled<MimeMailboxClassData>(mailbox);
    if (object) filler.Append(object.get());
  }
  return array;
}

abi::REALstring getEmail(abi::REALobject self) {
  return host::Guard([=] {
    const auto* record = host::RecordOf<MimeMailboxClassData>(self);
    return record != nullptr ? Email(*record) : StringRef();
  });
}

}  // namespace zqv::objects
