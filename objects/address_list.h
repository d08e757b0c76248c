// MimeAddressListZQV: the mailboxes and groups of a To, Cc, Bcc or Reply-To field.
#pragma once

#include <mimetic/rfc822/addresslist.h>

#include "mime/list_text.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record; no address is left out.
void Set(MimeAddressListClassData& record, const mimetic::AddressList& list);
// The same, with the list's text form.
void Set(MimeAddressListClassData& record, const mimetic::AddressList& list,
         const mime::ListText& text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAddressListClassData& record);

// Registered with the host.
using ListedAddresses = ListAccess<&MimeAddressListClassData::addresses>;
inline constexpr auto MimeAddressListConstructor =
    &ConstructFromText<MimeAddressListClassData, mimetic::AddressList, mime::ListKind::kAddresses>;
inline constexpr auto MimeAddressListDestructor = &DestroyRecord<MimeAddressListClassData>;

}  // namespace zqv::objects
