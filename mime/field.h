// MimeFieldZQV: one header field, name and value.
#pragma once

#include <mimetic/rfc822/field.h>

#include "mime/lifecycle.h"
#include "mime/records.h"

namespace zqv::mime {

// Fills a fresh record: the value as the parser gives it, undecoded, then the name as written.
void Set(MimeFieldClassData& record, const mimetic::Field& field);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeFieldClassData& record);

// Registered with the host. The constructor parses "Name: value".
inline constexpr auto MimeFieldConstructor = &ConstructFromText<MimeFieldClassData, mimetic::Field>;
inline constexpr auto MimeFieldDestructor = &DestroyRecord<MimeFieldClassData>;

}  // namespace zqv::mime
