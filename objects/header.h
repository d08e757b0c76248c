// MimeHeaderZQV: the header of an entity, its known fields as properties and every field in a list.
#pragma once

#include "host/ref.h"
#include "mime/header.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"

namespace zqv::objects {

// A new object for `header`; nil when the host cannot make one. A failure on the way raises and
// gives the object as far as it was filled. [new lock]
host::ObjectRef NewMimeHeaderZQV(const mime::Header& header);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeHeaderClassData& record);

// Registered with the host.
using HeaderFields = ListAccess<&MimeHeaderClassData::fields>;
inline constexpr auto MimeHeaderConstructor = &ConstructEmpty;
inline constexpr auto MimeHeaderDestructor = &DestroyRecord<MimeHeaderClassData>;
// Whether a field of that name [borrowed] exists, by the host's own comparison.
abi::RBBoolean hasField(abi::REALobject self, abi::REALstring name);
// The first field of that name with one lock for the application; nil when there is none.
abi::REALobject FieldByName(abi::REALobject self, abi::REALstring name);

}  // namespace zqv::objects
