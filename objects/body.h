// MimeBodyZQV: the text of a part's body, and the entities inside it.
#pragma once

#include "mime/message.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"

namespace zqv::objects {

// Creates an object for the body of `part` with an empty list of parts; nil when the host cannot
// make one. [new lock]
host::ObjectRef NewMimeBodyZQV(const mime::Part& part);

// List members, constructor and destructor, registered with the host.
using BodyParts = ListAccess<&MimeBodyClassData::parts>;
inline constexpr auto MimeBodyConstructor = &ConstructEmpty;
inline constexpr auto MimeBodyDestructor = &DestroyRecord<MimeBodyClassData>;

}  // namespace zqv::objects
