// UTF-8 by the table of allowed byte sequences (RFC 3629, section 4), one row after the other.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::reference {

// The length of the allowed sequence of two to four bytes at the start of `bytes`; 0 for none.
std::size_t AllowedSequence(std::string_view bytes);

// Well-formed and without control characters other than tab, line feed and carriage return.
bool IsUtf8(std::string_view bytes);

struct DecodedUtf8 {
  std::u32string code_points;  // without U+FEFF and U+FFFE
  std::size_t stopped = 0;     // the offset of the first byte that was not decoded
};
DecodedUtf8 DecodeUtf8(std::string_view bytes);

}  // namespace zqv::reference
