// From a message's bytes to the MIME library's tree of entities.
//
// The bytes are parsed where they lie: no stream and no copy, with the same result as the library's
// own stream constructor, but within the limits of limits.h.
#pragma once

#include <mimetic/mimeentity.h>

#include <string_view>

#include "mime/message_texts.h"

namespace zqv::mime {

// Parses `message` into `top`, which must be empty. Throws std::runtime_error, leaving `top` with
// what was parsed until then, when the message is beyond a limit.
void ParseMessage(std::string_view message, mimetic::MimeEntity& top);

// The same, but texts are left where they lie, and the tree is without them: `texts` tells, as long
// as the message lives. Such a tree cannot be written.
void ParseMessage(std::string_view message, mimetic::MimeEntity& top, MessageTexts& texts);

}  // namespace zqv::mime
