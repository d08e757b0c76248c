#include "objects/mailbox_list.h"

#include "host/strings.h"
#include "objects/mailbox.h"

namespace zqv::objects {

void Set(MimeMailboxListClassData& record, const mime::MailboxList& list) {
  record.StringValue.Put(host::BuildDetectedText(list.text()));
  record.mailboxes.Put(NewMailboxArray({list.begin(), list.size()}));
}

}  // namespace zqv::objects
