// MimeMailboxListZQV: the mailboxes of a From field.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record. Mailboxes without a local part get no object in the array.
void Set(MimeMailboxListClassData& record, const mime::MailboxList& list);
// List members, constructor and destructor, registered with the host.
using ListedMailboxes = ListAccess<&MimeMailboxListClassData::mailboxes>;
inline constexpr auto MimeMailboxListConstructor =
    &ConstructFromText<MimeMailboxListClassData, mime::MailboxList>;
inline constexpr auto MimeMailboxListDestructor = &DestroyRecord<MimeMailboxListClassData>;

}  // namespace zqv::objects
