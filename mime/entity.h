// MimeEntityZQV: one entity of a message, with its header and body objects.
#pragma once

#include <mimetic/mimeentity.h>

#include <string_view>

#include "abi/records.h"
#include "mime/header_view.h"
#include "mime/lifecycle.h"
#include "mime/records.h"

namespace zqv::mime {

// Told of every entity below the one whose body is built, children before their parents, when the
// entity's body and header objects are there. The one way in which message rules see the walk.
class EntitySink {
 public:
  // `record` is that of the entity's host object; `body` and `header` are its objects [borrowed],
  // each nil when the host could not make it. May throw.
  virtual void OnEntity(const mimetic::MimeEntity& entity, MimeEntityClassData& record,
                        abi::REALobject body, abi::REALobject header) = 0;

  // The text of a body [borrowed], which the tree need not hold itself.
  virtual std::string_view TextOf(const mimetic::Body& body) const { return body; }
  // A header with the values of its fields, which the tree need not hold itself.
  virtual HeaderView ViewOf(const mimetic::Header& header) const { return HeaderView(header); }

 protected:
  ~EntitySink() = default;
};

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeEntityClassData& record);

// Registered with the host, for MimeEmailZQV too.
inline constexpr auto MimeEntityConstructor = &ConstructEmpty;
inline constexpr auto MimeEntityDestructor = &DestroyRecord<MimeEntityClassData>;

}  // namespace zqv::mime
