// Parses the header of one part into fields that are views of the message.
//
// What is accepted as a field, a fold and the end of the header is what mimetic accepts, also where
// it is more lenient than RFC 5322 (see the .cc).
#pragma once

#include <vector>

#include "base/text_arena.h"
#include "mime/field.h"
#include "mime/limits.h"
#include "mime/message.h"

namespace zqv::mime {

// What the headers of all parts of a message share. [borrowed]
struct HeaderContext {
  std::vector<Field>& fields;      // receives the fields
  base::TextArena& folded_values;  // owns values of several lines, with their folds replaced
  MessageLimits& limits;
};

// Where a header ended, as pointers into the message.
struct LoadedHeader {
  HeaderEnd ended_by;
  const char* body;  // the first byte of the body
  // Where the search for boundaries begins. Equal to `body`, unless a line that is no field ended
  // the header: then after the characters of that line that were scanned as a name. QUIRK: so the
  // rest of such a line can be taken for a boundary. Equal to mimetic's result.
  // Test: Parser.GivesTheReferencesTree.
  const char* rest;
};

// Parses the header that begins at `at`, in a message that ends before `end`, and appends its
// fields to the context. Throws std::runtime_error when a limit is exceeded (limits.h), and
// std::bad_alloc.
LoadedHeader LoadHeader(const char* at, const char* end, HeaderContext& context);

}  // namespace zqv::mime
