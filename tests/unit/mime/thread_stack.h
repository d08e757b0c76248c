// Running code on a stack of a chosen size, as a host's secondary threads do, and messages that are
// nested so deeply that it matters.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace zqv::test {

inline constexpr std::size_t kSmallStack = 512 * 1024;
inline constexpr std::size_t kLargeStack = 8 * 1024 * 1024;

// Runs `body` on a thread of its own with a stack of `bytes`, and waits for it.
void RunOnStack(std::size_t bytes, const std::function<void()>& body);

enum class Nesting { kMultipart, kMessage, kBoth };

// A message with `levels` entities inside one another below the message itself; the innermost has
// the body "end\n". kBoth takes turns, a multipart first.
std::string NestedMessage(Nesting nesting, std::size_t levels);

// The number of levels that the parser accepts at most on a stack of `bytes`.
std::size_t MostLevels(Nesting nesting, std::size_t bytes);

}  // namespace zqv::test
