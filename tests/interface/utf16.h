// Strings in UTF-16, as an application can have them.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include "tests/interface/session.h"

namespace zqv::interface_test {

// A string in this machine's byte order, as the host's UTF-16 strings are.
inline String MakeUtf16(std::u16string_view text) {
  std::string bytes(text.size() * sizeof(char16_t), '\0');
  std::memcpy(bytes.data(), text.data(), bytes.size());
  return MakeString(bytes, abi::kUtf16);
}

}  // namespace zqv::interface_test
