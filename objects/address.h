// MimeAddressZQV: one entry of an address field, either a mailbox or a group.
#pragma once

#include <mimetic/rfc822/address.h>

#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record. A mailbox without local part, and a group without name and members, are
// left out: then both objects are nil. `text`: the address's text form, for those who have it
// already.
void Set(MimeAddressClassData& record, const mimetic::Address& address);
void Set(MimeAddressClassData& record, const mimetic::Address& address, std::string_view text);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAddressClassData& record);

// Registered with the host.
inline constexpr auto MimeAddressConstructor =
    &ConstructFromText<MimeAddressClassData, mimetic::Address, mime::ListKind::kAddresses>;
inline constexpr auto MimeAddressDestructor = &DestroyRecord<MimeAddressClassData>;

}  // namespace zqv::objects
