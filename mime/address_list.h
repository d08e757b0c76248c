// MimeAddressListZQV: the mailboxes and groups of a To, Cc, Bcc or Reply-To field.
#pragma once

#include <mimetic/rfc822/addresslist.h>

#include "mime/lifecycle.h"
#include "mime/list_access.h"
#include "mime/list_text.h"
#include "mime/records.h"

namespace zqv::mime {

// Fills a fresh record; no address is left out.
void Set(MimeAddressListClassData& record, const mimetic::AddressList& list);
// The same, with the list's text form.
void Set(MimeAddressListClassData& record, const mimetic::AddressList& list, const ListText& text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAddressListClassData& record);

// Registered with the host.
using ListedAddresses = ListAccess<&MimeAddressListClassData::addresses>;
inline constexpr auto MimeAddressListConstructor =
    &ConstructFromText<MimeAddressListClassData, mimetic::AddressList>;
inline constexpr auto MimeAddressListDestructor = &DestroyRecord<MimeAddressListClassData>;

}  // namespace zqv::mime
