#include "objects/address.h"

#include "host/strings.h"
#include "objects/group.h"
#include "objects/mailbox.h"

namespace zqv::objects {

void Set(MimeAddressClassData& record, const mimetic::Address& address) {
  Set(record, address, address.str());
}

void Set(MimeAddressClassData& record, const mimetic::Address& address, std::string_view text) {
  record.StringValue.Put(host::BuildDetectedText(text));
  record.isGroup = address.isGroup() ? 1 : 0;
  if (!address.isGroup()) {
    const mimetic::Mailbox& mailbox = address.mailbox();
    if (!mailbox.mailbox(1).empty()) {
      record.Mailbox.Put(NewFilled<MimeMailboxClassData>(mailbox, text));
    }
    return;
  }
  const mimetic::Group& group = address.group();
  if (!group.name(0).empty() || !group.empty())
    record.Group.Put(NewFilled<MimeGroupClassData>(group));
}

void Clear(MimeAddressClassData& record) {
  record.Group.Clear();
  record.Mailbox.Clear();
  record.StringValue.Clear();
}

}  // namespace zqv::objects
