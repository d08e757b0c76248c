#include "mime/mailbox_list.h"

#include "host/strings.h"
#include "mime/mailbox.h"

namespace zqv::mime {

void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list) {
  const std::vector<std::string> texts = TextsOf(list);
  record.StringValue.Put(host::CString2RB_detect_encoding(Join(texts, ", ")));
  record.mailboxes.Put(NewMailboxArray(list, texts));
}

void Clear(MimeMailboxListClassData& record) {
  record.StringValue.Clear();
  record.mailboxes.Clear();
}

}  // namespace zqv::mime
