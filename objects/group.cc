#include "objects/group.h"

#include "host/strings.h"
#include "objects/mailbox.h"
#include "objects/words.h"

namespace zqv::objects {

void Set(MimeGroupClassData& record, const mimetic::Group& group) {
  const std::string name = group.name(0);
  // QUIRK: no colon behind the name, no blank behind a comma. The MIME library writes a group so,
  // in the field's value, too. Test: Addresses.GroupTextHasNoColon.
  const mime::ListText text(group, ",");
  record.StringValue.Put(host::BuildDetectedText(name + text.whole() + ";"));
  record.Name.Put(host::CString2RB_detect_encoding(name));
  record.NameDecoded.Put(DecodeInlineEncodings(name, false));
  record.mailboxes.Put(NewMailboxArray(group, text));
}

void Clear(MimeGroupClassData& record) {
  record.StringValue.Clear();
  record.Name.Clear();
  record.NameDecoded.Clear();
  record.mailboxes.Clear();
}

}  // namespace zqv::objects
