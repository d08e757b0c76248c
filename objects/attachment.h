// MimeAttachmentZQV: a summary of a part that is listed as an attachment or as an inline part.
#pragma once

#include <string_view>

#include "mime/header.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// A part to be listed: the record of its entity, its header and its decoded body. [all borrowed]
struct ListedPart {
  const MimeEntityClassData& entity;
  const mime::Header& header;
  std::string_view decoded;
};

// Creates an attachment object for a part and appends it to `list`, Attachments or Inlines of the
// message. Creates the array when `list` is nil. When the host cannot make the object or the array,
// the part is not listed.
void AddAttachment(ArraySlot& list, const ListedPart& part);

// Constructor and destructor, registered with the host.
inline constexpr auto MimeAttachmentConstructor = &ConstructEmpty;
inline constexpr auto Destructor = &DestroyRecord<MimeAttachmentClassData>;

}  // namespace zqv::objects
