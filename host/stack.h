// How much of the calling thread's stack is left. Nested messages are parsed, walked, written and
// destroyed by recursion, and hosts run threads on stacks as small as 256 KB.
#pragma once

#include <cstddef>
#include <optional>

namespace zqv::host {

// Bytes between the caller's frame and the end of its stack; nothing when the system does not say.
std::optional<std::size_t> StackLeft();

}  // namespace zqv::host
