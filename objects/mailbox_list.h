// MimeMailboxListZQV: the mailboxes of a From field.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record; a mailbox without local part is left out of the array.
void Set(MimeMailboxListClassData& record, const mime::MailboxList& list);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeMailboxListClassData& record);

// Registered with the host.
using ListedMailboxes = ListAccess<&MimeMailboxListClassData::mailboxes>;
inline constexpr auto MimeMailboxListConstructor =
    &ConstructFromText<MimeMailboxListClassData, mime::MailboxList>;
inline constexpr auto MimeMailboxListDestructor = &DestroyRecord<MimeMailboxListClassData>;

}  // namespace zqv::objects
