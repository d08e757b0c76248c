// MimeGroupZQV: a named group of mailboxes, "Name: a@b, c@d;".
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record.
// QUIRK: the group's name is decoded with its quotes, a mailbox's label without. Part of the
// interface's contract; changing it is a major version. Test: Addresses.GroupNameKeepsItsQuotes.
void Set(MimeGroupClassData& record, const mime::Group& group);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeGroupClassData& record);

// Registered with the host.
using GroupMailboxes = ListAccess<&MimeGroupClassData::mailboxes>;
inline constexpr auto MimeGroupConstructor =
    &ConstructFromText<MimeGroupClassData, mime::GroupValue>;
inline constexpr auto MimeGroupDestructor = &DestroyRecord<MimeGroupClassData>;

}  // namespace zqv::objects
