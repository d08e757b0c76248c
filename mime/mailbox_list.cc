#include "mime/mailbox_list.h"

#include "host/strings.h"
#include "mime/mailbox.h"

namespace zqv::mime {

void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list) {
  Set(record, list, ListText(list, kListSeparator));
}

void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list, const ListText& text) {
  record.StringValue.Put(host::BuildDetectedText(text.whole()));
  record.mailboxes.Put(NewMailboxArray(list, text));
}

void Clear(MimeMailboxListClassData& record) {
  record.StringValue.Clear();
  record.mailboxes.Clear();
}

}  // namespace zqv::mime
