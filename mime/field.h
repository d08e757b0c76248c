// MimeFieldZQV: one header field, name and value.
#pragma once

#include <mimetic/rfc822/field.h>

#include <string_view>

#include "mime/lifecycle.h"
#include "mime/records.h"

namespace zqv::mime {

// Fills a fresh record: the value as the parser gives it, undecoded, then the name as written, each
// up to its first NUL.
void Set(MimeFieldClassData& record, const mimetic::Field& field);
// The same of texts without NULs.
void Set(MimeFieldClassData& record, std::string_view name, std::string_view value);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeFieldClassData& record);

// Registered with the host. The constructor parses "Name: value".
inline constexpr auto MimeFieldConstructor = &ConstructFromText<MimeFieldClassData, mimetic::Field>;
inline constexpr auto MimeFieldDestructor = &DestroyRecord<MimeFieldClassData>;

}  // namespace zqv::mime
