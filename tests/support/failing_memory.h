// Memory that runs out when a test says so.
#pragma once

#include <cstddef>

namespace zqv::test {

// While one lives, an allocation of more than `largest` bytes fails, with new and with calloc.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t largest);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

}  // namespace zqv::test
