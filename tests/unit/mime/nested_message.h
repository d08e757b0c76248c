// Messages that are nested so deeply that the size of the stack matters.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::test {

enum class Nesting { kMultipart, kMessage, kBoth };

// A message with `levels` entities inside one another below the message itself; the innermost has
// the body "end\n". kBoth takes turns, a multipart first.
std::string NestedMessage(Nesting nesting, std::size_t levels);

// The number of levels that the parser accepts at most on a stack of `bytes`.
std::size_t MostLevels(Nesting nesting, std::size_t bytes);

}  // namespace zqv::test
