// Reference implementation of UTF-8: looks each sequence up in the table of valid byte sequences
// (RFC 3629, section 4).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::reference {

// The length of the allowed sequence of two to four bytes at the start of `bytes`; 0 for none.
std::size_t AllowedSequence(std::string_view bytes);

// The length of the valid sequence of two to four bytes at the start of `bytes`; 0 when there is
// none.
bool IsUtf8(std::string_view bytes);

struct DecodedUtf8 {
  std::u32string code_points;  // without U+FEFF and U+FFFE
  std::size_t stopped = 0;     // the offset of the first byte that was not decoded
};
DecodedUtf8 DecodeUtf8(std::string_view bytes);

}  // namespace zqv::reference
