// Line ends of a message. CR, LF, CR LF and LF CR are one line end each (RFC 5322 has CR LF only).
#pragma once

#include "base/ascii.h"
#include "base/bytes16.h"

namespace zqv::mime {

// Whether two bytes are CR LF or LF CR.
constexpr bool IsPair(char first, char second) {
  return base::IsLineEnd(first) && base::IsLineEnd(second) && first != second;
}

// Returns the position after the line end that begins at `at`. There must be one: `at` points to a
// CR or LF before `end`, the end of the message.
inline const char* SkipLineEnd(const char* at, const char* end) {
  return at + (end - at > 1 && IsPair(at[0], at[1]) ? 2 : 1);
}

// The mask (base/bytes16.h) of the CR and LF characters.
inline base::Bytes16 AreLineEnds(base::Bytes16 c) { return (c == '\r') | (c == '\n'); }

// The first CR or LF in [at, limit), or `limit`.
inline const char* FindLineEnd(const char* at, const char* limit) {
  return base::FindFirst(at, limit, AreLineEnds);
}

}  // namespace zqv::mime
