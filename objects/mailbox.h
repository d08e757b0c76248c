// MimeMailboxZQV: one mailbox of an address field, "Label <mailbox@domain>".
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record.
void Set(MimeMailboxClassData& record, const mime::Mailbox& mailbox);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeMailboxClassData& record);

// An array of objects, one for each mailbox that has a local part [new lock]; the others are left
// out. Nil when the host cannot make an array.
host::ArrayRef NewMailboxArray(mime::MailboxRange mailboxes);

// Registered with the host.
inline constexpr auto MimeMailboxConstructor =
    &ConstructFromText<MimeMailboxClassData, mime::MailboxValue>;
inline constexpr auto MimeMailboxDestructor = &DestroyRecord<MimeMailboxClassData>;
// "mailbox@domain" [new lock for the application]; nil when both are.
abi::REALstring getEmail(abi::REALobject self);

}  // namespace zqv::objects
