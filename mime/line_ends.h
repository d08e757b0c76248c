// Where a message's lines end: CR, LF, CR LF and LF CR each are one line end.
#pragma once

#include "base/ascii.h"
#include "base/bytes16.h"

namespace zqv::mime {

// CRLF and LFCR are one line end.
constexpr bool IsPair(char first, char second) {
  return base::IsLineEnd(first) && base::IsLineEnd(second) && first != second;
}

// Past the line end that begins at `at`.
inline const char* SkipLineEnd(const char* at, const char* end) {
  return at + (end - at > 1 && IsPair(at[0], at[1]) ? 2 : 1);
}

inline base::Bytes16 AreLineEnds(base::Bytes16 c) { return (c == '\r') | (c == '\n'); }

// Where the first line end in [at, limit) begins, or `limit`.
inline const char* FindLineEnd(const char* at, const char* limit) {
  return base::FindFirst(at, limit, AreLineEnds);
}

}  // namespace zqv::mime
