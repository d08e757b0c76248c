// MimeAddressZQV: one entry of an address field, either a mailbox or a group.
#pragma once

#include "mime/addresses.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record. A mailbox without local part, and a group without name and members, are
// left out: then both objects are nil.
void Set(MimeAddressClassData& record, const mime::Address& address);
// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAddressClassData& record);

// Registered with the host.
inline constexpr auto MimeAddressConstructor =
    &ConstructFromText<MimeAddressClassData, mime::AddressValue>;
inline constexpr auto MimeAddressDestructor = &DestroyRecord<MimeAddressClassData>;

}  // namespace zqv::objects
