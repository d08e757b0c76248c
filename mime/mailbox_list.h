// MimeMailboxListZQV: the mailboxes of a From field.
#pragma once

#include <mimetic/rfc822/mailboxlist.h>

#include "mime/lifecycle.h"
#include "mime/list_access.h"
#include "mime/list_text.h"
#include "mime/records.h"

namespace zqv::mime {

// Fills a fresh record; a mailbox without local part is left out of the array.
void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list);
// The same, with the list's text form.
void Set(MimeMailboxListClassData& record, const mimetic::MailboxList& list, const ListText& text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeMailboxListClassData& record);

// Registered with the host.
using ListedMailboxes = ListAccess<&MimeMailboxListClassData::mailboxes>;
inline constexpr auto MimeMailboxListConstructor =
    &ConstructFromText<MimeMailboxListClassData, mimetic::MailboxList>;
inline constexpr auto MimeMailboxListDestructor = &DestroyRecord<MimeMailboxListClassData>;

}  // namespace zqv::mime
