// MimeAddressListZQV: the mailboxes and groups of a To, Cc, Bcc or Reply-To field.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record; no address is left out.
void Set(MimeAddressListClassData& record, const mime::AddressList& list);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAddressListClassData& record);

// Registered with the host.
using ListedAddresses = ListAccess<&MimeAddressListClassData::addresses>;
inline constexpr auto MimeAddressListConstructor =
    &ConstructFromText<MimeAddressListClassData, mime::AddressList>;
inline constexpr auto MimeAddressListDestructor = &DestroyRecord<MimeAddressListClassData>;

}  // namespace zqv::objects
