// MimeBodyZQV: a body's own text and the entities inside it.
#pragma once

#include "mime/message.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"

namespace zqv::objects {

// A new object for the body of `part`, with an empty list of parts [new lock]; nil when the host
// cannot make one.
host::ObjectRef NewMimeBodyZQV(const mime::Part& part);

// Gives back everything that the record holds, the list of parts by ReleaseParts; nil afterwards.
void Clear(MimeBodyClassData& record);

// Registered with the host.
using BodyParts = ListAccess<&MimeBodyClassData::parts>;
inline constexpr auto MimeBodyConstructor = &ConstructEmpty;
inline constexpr auto MimeBodyDestructor = &DestroyRecord<MimeBodyClassData>;

}  // namespace zqv::objects
