// Makes allocations fail in a test.
#pragma once

#include <cstddef>

namespace zqv::test {

// While an instance exists, an allocation of more than `largest` bytes fails, by new and by calloc.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t largest);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

}  // namespace zqv::test
