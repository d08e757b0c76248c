// MimeMailboxListZQV: the mailboxes of a From field.
#pragma once

#include <mimetic/rfc822/mailboxlist.h>

#include "mime/list_text.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record; a mailbox without local part is left out of the array.
void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list);
// The same, with the list's text form.
void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list,
         const mime::ListText& text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeMailboxListClassData& record);

// Registered with the host.
using ListedMailboxes = ListAccess<&MimeMailboxListClassData::mailboxes>;
inline constexpr auto MimeMailboxListConstructor =
    &ConstructFromText<MimeMailboxListClassData, mimetic::MailboxList, mime::ListKind::kMailboxes>;
inline constexpr auto MimeMailboxListDestructor = &DestroyRecord<MimeMailboxListClassData>;

}  // namespace zqv::objects
