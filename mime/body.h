// MimeBodyZQV: a body's own text and the entities inside it. Building one walks everything below.
#pragma once

#include <mimetic/mimeentity.h>

#include "host/ref.h"
#include "mime/entity.h"
#include "mime/list_access.h"

namespace zqv::mime {

// A new object for the body of `entity` and, depth-first, for every entity below it, of each of
// which `sink` is told. Nil when the host cannot make one; then nothing below is visited. What
// `sink` throws passes through. [new lock]
host::ObjectRef NewMimeBodyZQV(const mimetic::MimeEntity& entity, EntitySink& sink);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeBodyClassData& record);

// Registered with the host.
using BodyParts = ListAccess<&MimeBodyClassData::parts>;
inline constexpr auto MimeBodyConstructor = &ConstructEmpty;
inline constexpr auto MimeBodyDestructor = &DestroyRecord<MimeBodyClassData>;

}  // namespace zqv::mime
