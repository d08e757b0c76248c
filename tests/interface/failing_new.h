// Memory that the library gets with `new`: how much of it is in use, and making it run out.
//
// The program's own operator new stands in the place of the standard library's for the plug-in too.
// Only what code of the plug-in allocates is counted and made to fail; the host is spared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zqv::interface_test {

// Blocks of the plug-in that are in use, by the operator they come from.
struct LiveBlocks {
  std::int64_t single = 0;  // new
  std::int64_t arrays = 0;  // new[]
};

// While one lives, the plug-in's allocations are counted, and those number `from` (from 1) to
// `from + calls - 1` throw std::bad_alloc.
class FailingNew {
 public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  explicit FailingNew(std::uint64_t from = kNever, std::uint64_t calls = 1);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;

  // Allocations so far, failed ones included.
  static std::uint64_t Count();
  // Of those made while any FailingNew lived.
  static LiveBlocks Live();
};

}  // namespace zqv::interface_test
