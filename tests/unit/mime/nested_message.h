// Deeply nested messages.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::test {

enum class Nesting { kMultipart, kMessage, kBoth };

// A message with `levels` entities nested in one another below the message itself. The innermost
// has the body "end\n". kBoth alternates multiparts and attached messages, a multipart first.
std::string NestedMessage(Nesting nesting, std::size_t levels);

}  // namespace zqv::test
