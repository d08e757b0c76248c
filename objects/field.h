// MimeFieldZQV: one header field, name and value.
#pragma once

#include <string_view>

#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills a fresh record: the value, undecoded, then the name as written. Neither has a NUL.
void Set(MimeFieldClassData& record, std::string_view name, std::string_view value);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeFieldClassData& record);

// Registered with the host. The constructor parses "Name: value".
void MimeFieldConstructor(abi::REALobject self, abi::REALstring text);
inline constexpr auto MimeFieldDestructor = &DestroyRecord<MimeFieldClassData>;

}  // namespace zqv::objects
