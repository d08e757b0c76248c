// MimeMailboxZQV: one mailbox of an address field, "Label <mailbox@domain>".
#pragma once

#include <mimetic/rfc822/mailbox.h>

#include <string_view>
#include <vector>

#include "mime/list_text.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record. `text`: the mailbox's text form, for those who have it already.
void Set(MimeMailboxClassData& record, const mimetic::Mailbox& mailbox);
void Set(MimeMailboxClassData& record, const mimetic::Mailbox& mailbox, std::string_view text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeMailboxClassData& record);

// An array of objects, one for each mailbox that has a local part [new lock]; the others are left
// out. `text` is that of the list. Nil when the host cannot make an array.
host::ArrayRef NewMailboxArray(const std::vector<mimetic::Mailbox>& mailboxes,
                               const mime::ListText& text);

// Registered with the host.
inline constexpr auto MimeMailboxConstructor =
    &ConstructFromText<MimeMailboxClassData, mimetic::Mailbox, mime::ListKind::kMailbox>;
inline constexpr auto MimeMailboxDestructor = &DestroyRecord<MimeMailboxClassData>;
// "mailbox@domain" [new lock for the application]; nil when both are.
abi::REALstring getEmail(abi::REALobject self);

}  // namespace zqv::objects
