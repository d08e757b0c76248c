// MimeFieldZQV: the name and the value of one header field.
#pragma once

#include <string_view>

#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// Fills an empty record. Encoded words in the value are not decoded. Neither text may contain a
// NUL.
void Set(MimeFieldClassData& record, std::string_view name, std::string_view value);

// Constructor and destructor, registered with the host. The constructor parses "Name: value".
void MimeFieldConstructor(abi::REALobject self, abi::REALstring text);
inline constexpr auto MimeFieldDestructor = &DestroyRecord<MimeFieldClassData>;

}  // namespace zqv::objects
