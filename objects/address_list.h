// MimeAddressListZQV: the mailboxes and groups of a To, Cc, Bcc or Reply-To field.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record. Every address gets an object, also an empty one.
void Set(MimeAddressListClassData& record, const mime::AddressList& list);
// List members, constructor and destructor, registered with the host.
using ListedAddresses = ListAccess<&MimeAddressListClassData::addresses>;
inline constexpr auto MimeAddressListConstructor =
    &ConstructFromText<MimeAddressListClassData, mime::AddressList>;
inline constexpr auto MimeAddressListDestructor = &DestroyRecord<MimeAddressListClassData>;

}  // namespace zqv::objects
