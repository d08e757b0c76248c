#include "objects/mailbox.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

using host::CString2RB_detect_encoding;
using host::StringRef;

StringRef Concatenate(abi::REALstring left, abi::REALstring right) {
  return StringRef::Adopt(host::entry::RuntimeAddString(left, right));
}

StringRef Email(const MimeMailboxClassData& record) {
  if (!record.Mailbox && !record.Domain) return {};
  const StringRef at = host::BuildString("@", abi::kAscii);
  const StringRef front = Concatenate(record.Mailbox.get(), at.get());
  return Concatenate(front.get(), record.Domain.get());
}

}  // namespace

void Set(MimeMailboxClassData& record, const mimetic::Mailbox& mailbox) {
  Set(record, mailbox, mailbox.str());
}

void Set(MimeMailboxClassData& record, const mimetic::Mailbox& mailbox, std::string_view text) {
  const std::string label = mailbox.label(0);
  record.StringValue.Put(host::BuildDetectedText(text));
  record.Mailbox.Put(CString2RB_detect_encoding(mailbox.mailbox(1)));
  record.Domain.Put(CString2RB_detect_encoding(mailbox.domain(1)));
  record.Label.Put(CString2RB_detect_encoding(label));
  record.LabelDecoded.Put(DecodeInlineEncodings(label, true));
  record.Sourceroute.Put(CString2RB_detect_encoding(mailbox.sourceroute(1)));
}

void Clear(MimeMailboxClassData& record) {
  record.StringValue.Clear();
  record.Mailbox.Clear();
  record.Domain.Clear();
  record.Label.Clear();
  record.LabelDecoded.Clear();
  record.Sourceroute.Clear();
}

host::ArrayRef NewMailboxArray(const std::vector<mimetic::Mailbox>& mailboxes,
                               const mime::ListText& text) {
  host::ArrayRef array = host::NewObjectArray();
  if (!array) return array;
  for (std::size_t i = 0; i < mailboxes.size(); ++i) {
    if (mailboxes[i].mailbox(1).empty()) continue;
    const host::ObjectRef object = NewFilled<MimeMailboxClassData>(mailboxes[i], text[i]);
    if (object) host::AppendObject(array.get(), object.get());
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
