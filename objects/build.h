// From a message's bytes to the objects that mirror it: check the bytes, parse them, build the
// objects, complete the message's record.
#pragma once

#include "abi/records.h"
#include "objects/input.h"

namespace zqv::objects {

// Fills the record of `self` from a raw message, whose memory it gives back as soon as it is
// parsed. `source` [borrowed] is the host string that the bytes come from, or nil. Raises an
// UnsupportedOperationException for an empty text and for one that begins with a byte of 0x80 or
// above. May throw; what was set until then stays.
void MimeEmailConstructor(abi::REALobject self, MessageBytes message, abi::REALstring source);

}  // namespace zqv::objects
