#include "objects/group.h"

#include "host/strings.h"
#include "objects/mailbox.h"
#include "objects/words.h"

namespace zqv::objects {

void Set(MimeGroupClassData& record, const mime::Group& group) {
  record.StringValue.Put(host::BuildDetectedText(group.text));
  record.Name.Put(host::BuildDetectedText(group.name));
  record.NameDecoded.Put(DecodeInlineEncodings(group.name, false));
  record.mailboxes.Put(NewMailboxArray(group.mailboxes));
}

}  // namespace zqv::objects
