// Parses the header of one part into fields that are views of the message.
//
// Fields, folds and the end of the header are recognised as mimetic recognises them, also where
// mimetic is more lenient than RFC 5322 (see the .cc).
#pragma once

#include <vector>

#include "base/text_arena.h"
#include "mime/field.h"
#include "mime/limits.h"
#include "mime/message.h"

namespace zqv::mime {

// The objects that the headers of all parts of a message share. [borrowed]
struct HeaderContext {
  std::vector<Field>& fields;      // of all headers loaded so far
  base::TextArena& folded_values;  // owns the values of folded fields, with their folds replaced
  MessageLimits& limits;
};

// Where a header ended, as pointers into the message.
struct LoadedHeader {
  HeaderEnd ended_by;
  const char* body;  // the first byte of the body, or the end of the message
  // Where the search for boundaries begins. Equal to `body`, unless a line that is no field ended
  // the header: then after the characters of that line that were scanned as a name and the blanks
  // after it. QUIRK: so the rest of such a line can be taken for a boundary. Equal to mimetic's
  // result.
  // Test: Parser.GivesTheReferencesTree.
  const char* rest;
};

// Parses the header that begins at `at`, appends its fields to `context.fields`, and returns where
// the header ends. `end` is the end of the message; `at` may equal it. Throws std::runtime_error
// when a limit is exceeded (limits.h), and std::bad_alloc.
LoadedHeader LoadHeader(const char* at, const char* end, HeaderContext& context);

}  // namespace zqv::mime
