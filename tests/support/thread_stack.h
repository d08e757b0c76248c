// Runs code on a stack of a chosen size, which is how a host's secondary threads run.
#pragma once

#include <cstddef>
#include <functional>

namespace zqv::test {

// The smallest stack on which the library promises to handle every message.
inline constexpr std::size_t kTinyStack = 128 * 1024;
inline constexpr std::size_t kSmallStack = 512 * 1024;
inline constexpr std::size_t kLargeStack = 8 * 1024 * 1024;

// Calls `body`, which must not throw, on a new thread with a stack of `bytes` bytes, and waits for
// it. Throws std::runtime_error when the thread cannot be created.
void RunOnStack(std::size_t bytes, const std::function<void()>& body);

}  // namespace zqv::test
