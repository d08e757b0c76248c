// MimeAddressZQV: one entry of an address field, either a mailbox or a group.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record. The mailbox object is nil when the mailbox has no local part, the group
// object when the group has neither a name nor members.
void Set(MimeAddressClassData& record, const mime::Address& address);
// Constructor and destructor, registered with the host.
inline constexpr auto MimeAddressConstructor =
    &ConstructFromText<MimeAddressClassData, mime::AddressValue>;
inline constexpr auto MimeAddressDestructor = &DestroyRecord<MimeAddressClassData>;

}  // namespace zqv::objects
