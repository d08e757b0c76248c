// Counts the memory that the plug-in allocates with `new`, and makes allocations fail.
//
// This program's operator new replaces the standard library's, also in the plug-in. Only
// allocations made while code of the plug-in runs are counted and can fail; the host's are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zqv::interface_test {

// Live blocks of the plug-in, by the operator that allocated them.
struct LiveBlocks {
  std::int64_t single = 0;  // new
  std::int64_t arrays = 0;  // new[]
};

// While an instance exists, the plug-in's allocations are counted from 1, and those with the
// numbers `from` to `from + calls - 1` throw std::bad_alloc.
class FailingNew {
 public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  explicit FailingNew(std::uint64_t from = kNever, std::uint64_t calls = 1);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;

  // The number of allocations so far, failed ones included.
  static std::uint64_t Count();
  // The live blocks among all that were allocated while any FailingNew existed.
  static LiveBlocks Live();
};

}  // namespace zqv::interface_test
