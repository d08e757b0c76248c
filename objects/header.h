// MimeHeaderZQV: the header of a part. Some fields are properties; all fields are in a list.
#pragma once

#include "host/ref.h"
#include "mime/header.h"
#include "objects/lifecycle.h"
#include "objects/list_access.h"

namespace zqv::objects {

// Creates an object for `header`; nil when the host cannot make one. When filling it throws, raises
// a host exception and returns the object as far as it was filled. [new lock]
host::ObjectRef NewMimeHeaderZQV(const mime::Header& header);

// List members, constructor, destructor and methods, registered with the host.
using HeaderFields = ListAccess<&MimeHeaderClassData::fields>;
inline constexpr auto MimeHeaderConstructor = &ConstructEmpty;
inline constexpr auto MimeHeaderDestructor = &DestroyRecord<MimeHeaderClassData>;
// Whether the header has a field of that name. The host compares the names.
abi::RBBoolean hasField(abi::REALobject self, abi::REALstring name);
// The first field of that name; nil when there is none. [new lock for the application]
abi::REALobject FieldByName(abi::REALobject self, abi::REALstring name);

}  // namespace zqv::objects
