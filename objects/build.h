// Builds all objects of a message from its bytes: checks and parses the bytes, creates the objects
// of all parts, and completes the message's own record.
#pragma once

#include "abi/records.h"
#include "objects/input.h"

namespace zqv::objects {

// Fills the record of `self`, a MimeEmailZQV, from a message. The message's memory is freed as soon
// as its objects are built. `source` [borrowed] is the host string that contains the bytes, which
// is stored as Source; when it is nil, a new string is made. A UTF-8 byte-order mark is skipped.
// Raises an UnsupportedOperationException for a message that is then empty or begins with a byte of
// 0x80 or above. Throws std::runtime_error when a limit is exceeded (mime/limits.h), and
// std::bad_alloc. What was stored before a failure stays.
void MimeEmailConstructor(abi::REALobject self, MessageBytes message, abi::REALstring source);

}  // namespace zqv::objects
