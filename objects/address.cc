#include "objects/address.h"

#include "host/strings.h"
#include "objects/group.h"
#include "objects/mailbox.h"

namespace zqv::objects {

void Set(MimeAddressClassData& record, const mime::Address& address) {
  record.StringValue.Put(host::BuildDetectedText(address.text()));
  record.isGroup = address.is_group() ? 1 : 0;
  if (!address.is_group()) {
    if (!address.mailbox->local_part.empty()) {
      record.Mailbox.Put(NewFilled<MimeMailboxClassData>(*address.mailbox));
    }
    return;
  }
  const mime::Group& group = *address.group;
  if (!group.name.empty() || !group.mailboxes.empty())
    record.Group.Put(NewFilled<MimeGroupClassData>(group));
}

}  // namespace zqv::objects
