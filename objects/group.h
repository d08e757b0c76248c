// MimeGroupZQV: a named group of mailboxes (RFC 5322, section 3.4): "Name: a@b, c@d;".
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record.
// QUIRK: NameDecoded keeps the quotes around a group's name, while LabelDecoded of a mailbox does
// not have them. Part of the interface's contract; changing it is a major version. Test:
// Addresses.GroupNameKeepsItsQuotes.
void Set(MimeGroupClassData& record, const mime::Group& group);
// List members, constructor and destructor, registered with the host.
using GroupMailboxes = ListAccess<&MimeGroupClassData::mailboxes>;
inline constexpr auto MimeGroupConstructor =
    &ConstructFromText<MimeGroupClassData, mime::GroupValue>;
inline constexpr auto MimeGroupDestructor = &DestroyRecord<MimeGroupClassData>;

}  // namespace zqv::objects
