// Strings of an application that keeps its text in UTF-16.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include "tests/interface/session.h"

namespace zqv::interface_test {

// In this machine's byte order, as the host's own UTF-16 is.
inline String MakeUtf16(std::u16string_view text) {
  std::string bytes(text.size() * sizeof(char16_t), '\0');
  std::memcpy(bytes.data(), text.data(), bytes.size());
  return MakeString(bytes, abi::kUtf16);
}

}  // namespace zqv::interface_test
