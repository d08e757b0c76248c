// MimeAttachmentZQV: a flat summary of a part that is neither the message's plain text nor its
// HTML.
#pragma once

#include <string_view>

#include "mime/header.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

// A part that is listed: its entity's record, its header, and its decoded body.
struct ListedPart {
  const MimeEntityClassData& entity;
  const mime::Header& header;
  std::string_view decoded;
};

// Makes the record of one part and appends it to `list`, a list of the message's, which is made
// when it is nil. A part that the host cannot make an object or a list for is not listed.
void AddAttachment(ArraySlot& list, const ListedPart& part);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAttachmentClassData& record);

// Registered with the host.
inline constexpr auto MimeAttachmentConstructor = &ConstructEmpty;
inline constexpr auto Destructor = &DestroyRecord<MimeAttachmentClassData>;

}  // namespace zqv::objects
