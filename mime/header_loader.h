// Reading the fields of one header where they lie.
//
// What counts as a field, a fold, the end of the header and the start of the body equals the MIME
// library's reading to the byte, its leniencies included (see the .cc).
#pragma once

#include <vector>

#include "base/text_arena.h"
#include "mime/field.h"
#include "mime/limits.h"
#include "mime/message.h"

namespace zqv::mime {

// Where the fields go, and what the headers of one message share.
struct HeaderContext {
  std::vector<Field>& fields;
  base::TextArena& folded_values;  // values that do not lie in the message in one piece
  MessageLimits& limits;
};

// Where a header ended.
struct LoadedHeader {
  HeaderEnd ended_by;
  const char* body;  // the first byte of the body
  // Where the search for boundaries begins: `body`, but behind the characters that were read of a
  // line that is no field. QUIRK: so such a line can be taken for a boundary from its middle on.
  // Test: Parser.GivesTheReferencesTree.
  const char* rest;
};

// Appends the fields of the header that begins at `at`. Throws std::runtime_error when a field is
// beyond the limits.
LoadedHeader LoadHeader(const char* at, const char* end, HeaderContext& context);

}  // namespace zqv::mime
