// MimeEntityZQV: one entity of a message, with its header and body objects.
#pragma once

#include <mimetic/mimeentity.h>

#include "abi/records.h"
#include "mime/header_view.h"
#include "mime/lifecycle.h"
#include "mime/message_texts.h"
#include "mime/records.h"

namespace zqv::mime {

// Told of every entity below the one whose body is built, children before their parents, when the
// entity's body and header objects are there. The one way in which message rules see the walk.
class EntitySink {
 public:
  // `fields` are the entity's, `record` is that of its host object; `body` and `header` are its
  // objects [borrowed], each nil when the host could not make it. May throw.
  virtual void OnEntity(const mimetic::MimeEntity& entity, const HeaderView& fields,
                        MimeEntityClassData& record, abi::REALobject body,
                        abi::REALobject header) = 0;

  // The texts of the tree, which does not hold them itself.
  virtual const MessageTexts& texts() const = 0;

 protected:
  ~EntitySink() = default;
};

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeEntityClassData& record);

// Registered with the host, for MimeEmailZQV too.
inline constexpr auto MimeEntityConstructor = &ConstructEmpty;
inline constexpr auto MimeEntityDestructor = &DestroyRecord<MimeEntityClassData>;

}  // namespace zqv::mime
