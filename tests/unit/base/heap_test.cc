#include "base/heap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "tests/support/failing_memory.h"

namespace zqv::test {
namespace {

TEST(Heap, UnitsAreZero) {
  constexpr std::size_t kCount = 10'000;
  const auto units = base::AllocateZeroed<char32_t>(kCount);
  ASSERT_NE(units, nullptr);
  for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(units[i], U'\0');
}

TEST(Heap, GivesNullWithoutMemory) {
  const AllocationLimit limit(100);
  EXPECT_NE(base::AllocateZeroed<char>(100), nullptr);
  EXPECT_EQ(base::AllocateZeroed<char>(101), nullptr);
  EXPECT_EQ(base::AllocateZeroed<char32_t>(26), nullptr)
      << "the size is counted in units of four bytes";
}

TEST(Heap, GivesNullWhenTheSizeOverflows) {
#if defined(ZQV_INSTRUMENTED)
  GTEST_SKIP() << "a sanitizer's calloc ends the process when a size overflows";
#endif
  volatile std::size_t count = std::numeric_limits<std::size_t>::max() / 2;
  EXPECT_EQ(base::AllocateZeroed<char32_t>(count), nullptr);
}

}  // namespace
}  // namespace zqv::test
