// A message written out again without its attachments and inline parts.
#pragma once

#include <mimetic/mimeentity.h>

#include <string>
#include <string_view>

#include "abi/records.h"

namespace zqv::email {

// Removes and deletes every entity below `parts` whose Content-Disposition is inline or attachment.
// QUIRK: the disposition alone decides, other than where parts are listed; a part without one stays
// even when it is an attachment. Test: Strip.OnlyTheDispositionDecides.
void RemoveAttachments(mimetic::MimeEntityList& parts);

// `text` with every line break (CR LF, LF CR, a lone LF, a lone CR) turned into one CR; `removed`
// counts the bytes dropped. QUIRK: a CR or LF at position 1 is dropped as if it completed a pair.
// Test: LineBreaks.BreakAtPositionOneIsDropped.
std::string RewriteLineBreaks(std::string_view text, std::size_t& removed);

// Registered with the host: the message's source without its files [new lock for the application],
// or nil.
abi::REALstring SourceWithoutAttachments(abi::REALobject self);

}  // namespace zqv::email
