// MimeMailboxZQV: one mailbox of an address field, "Label <mailbox@domain>".
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record.
void Set(MimeMailboxClassData& record, const mime::Mailbox& mailbox);
// Creates an array with an object for each mailbox that has a local part. Nil when the host cannot
// make an array. [new lock]
host::ArrayRef NewMailboxArray(mime::MailboxRange mailboxes);

// Constructor, destructor and getter, registered with the host.
inline constexpr auto MimeMailboxConstructor =
    &ConstructFromText<MimeMailboxClassData, mime::MailboxValue>;
inline constexpr auto MimeMailboxDestructor = &DestroyRecord<MimeMailboxClassData>;
// "mailbox@domain"; nil when both are nil. [new lock for the application]
abi::REALstring getEmail(abi::REALobject self);

}  // namespace zqv::objects
