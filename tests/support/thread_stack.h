// Running code on a stack of a chosen size, as a host's secondary threads do.
#pragma once

#include <cstddef>
#include <functional>

namespace zqv::test {

// The least of which it is promised that messages can be handled on it.
inline constexpr std::size_t kTinyStack = 128 * 1024;
inline constexpr std::size_t kSmallStack = 512 * 1024;
inline constexpr std::size_t kLargeStack = 8 * 1024 * 1024;

// Runs `body`, which must not throw, on a thread of its own with a stack of `bytes`, and waits for
// it. Throws std::runtime_error when there is no such thread.
void RunOnStack(std::size_t bytes, const std::function<void()>& body);

}  // namespace zqv::test
