// Where a message's lines end: CR, LF, CR LF and LF CR each are one line end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/ascii.h"

namespace zqv::mime {

// CRLF and LFCR are one line end.
constexpr bool IsPair(char first, char second) {
  return base::IsLineEnd(first) && base::IsLineEnd(second) && first != second;
}

// Past the line end that begins at `at`.
inline const char* SkipLineEnd(const char* at, const char* end) {
  return at + (end - at > 1 && IsPair(at[0], at[1]) ? 2 : 1);
}

// Where a character comes next. What was searched is not searched again, so that walking through a
// text costs no more than its length, whatever it holds.
class Finder {
 public:
  Finder(char c, const char* at) : c_(c), known_(at) {}

  // The first one in [at, limit), or `limit`. Neither ever goes back.
  const char* Next(const char* at, const char* limit) {
    if (is_found_ && known_ >= at) return std::min(known_, limit);
    const char* const from = std::max(at, known_);
    if (from >= limit) return limit;
    const void* const found = std::memchr(from, c_, static_cast<std::size_t>(limit - from));
    is_found_ = found != nullptr;
    known_ = is_found_ ? static_cast<const char*>(found) : limit;
    return known_;
  }

 private:
  const char c_;
  const char* known_;  // one of them, or there is none before
  bool is_found_ = false;
};

// Where the next line end begins.
class LineEndFinder {
 public:
  explicit LineEndFinder(const char* at) : cr_('\r', at), lf_('\n', at) {}

  // The first one in [at, limit), or `limit`. Neither ever goes back.
  const char* Next(const char* at, const char* limit) { return cr_.Next(at, lf_.Next(at, limit)); }

 private:
  Finder cr_;
  Finder lf_;
};

}  // namespace zqv::mime
