// Messages that are nested deeply.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::test {

enum class Nesting { kMultipart, kMessage, kBoth };

// A message with `levels` entities inside one another below the message itself; the innermost has
// the body "end\n". kBoth takes turns, a multipart first.
std::string NestedMessage(Nesting nesting, std::size_t levels);

}  // namespace zqv::test
