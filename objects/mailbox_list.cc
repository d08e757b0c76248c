#include "objects/mailbox_list.h"

#include "host/strings.h"
#include "objects/mailbox.h"

namespace zqv::objects {

void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list) {
  Set(record, list, mime::ListText(list, mime::kListSeparator));
}

void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list,
         const mime::ListText& text) {
  record.StringValue.Put(host::BuildDetectedText(text.whole()));
  record.mailboxes.Put(NewMailboxArray(list, text));
}

void Clear(MimeMailboxListClassData& record) {
  record.StringValue.Clear();
  record.mailboxes.Clear();
}

}  // namespace zqv::objects
