// The parse of one message: check the bytes, parse them, build the objects, complete the record.
#pragma once

#include <string_view>

#include "abi/records.h"

namespace zqv::email {

// Fills the record of `self` from a raw message. `source` [borrowed] is the host string that the
// bytes come from, or nil. Raises an UnsupportedOperationException for an empty text and for one
// that begins with a byte of 0x80 or above. May throw; what was set until then stays.
void MimeEmailConstructor(abi::REALobject self, std::string_view message, abi::REALstring source);

}  // namespace zqv::email
