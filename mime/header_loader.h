// Reading a header's fields from bytes in memory, with the MIME library's own result.
//
// What counts as a field, a fold, the end of the header and the start of the body follows the
// library to the byte, its leniencies included (see the .cc); only the way there is another: whole
// runs instead of single characters, and nothing that leaks when a field cannot be stored.
#pragma once

#include <mimetic/mimeentity.h>

#include <string>

#include "mime/limits.h"
#include "mime/line_ends.h"
#include "mime/message_texts.h"

namespace zqv::mime {

// Where a header ended.
struct HeaderEnd {
  const char* at;          // the first byte of the body
  std::string body_start;  // bytes before `at` that belong to the body: a line that is no field
};

// Reads the fields between `at` and `end` into `texts` or, when those are null, into the entity's
// header, which is empty. Throws std::runtime_error when a field is beyond the limits.
HeaderEnd LoadHeader(const char* at, const char* end, mimetic::MimeEntity& entity,
                     MessageLimits& limits, LineEndFinder& line_ends, MessageTexts* texts);

}  // namespace zqv::mime
