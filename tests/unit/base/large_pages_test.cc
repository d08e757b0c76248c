#include "base/large_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstddef>
#include <initializer_list>

namespace zqv::base {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20U;
constexpr std::size_t kRoom =
    12 * kMegabyte + 3 * 4096;  // does not end at the border of a large page

// madvise fails for an address that is not at the start of a page and for memory that is not
// mapped.
TEST(LargePages, AreRequestedInsideTheBytesOnly) {
  void* const room = mmap(nullptr, 2 * kRoom, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(room, MAP_FAILED);
  char* const bytes = static_cast<char*>(room);
  ASSERT_EQ(munmap(bytes + kRoom, kRoom), 0);  // the memory after the bytes is not mapped
  errno = 0;
  if (madvise(bytes, kRoom, MADV_HUGEPAGE) != 0) GTEST_SKIP() << "this system has no large pages";
  for (const std::size_t start : {0 * kMegabyte, std::size_t{1}, std::size_t{4097}, kMegabyte}) {
    for (const std::size_t size :
         {0 * kMegabyte, std::size_t{1}, 3 * kMegabyte, 4 * kMegabyte, 5 * kMegabyte + 1}) {
      errno = 0;
      PreferLargePages(bytes + start, size);
      EXPECT_EQ(errno, 0) << size << " bytes from the start";
      PreferLargePages(bytes + kRoom - start - size, size);
      EXPECT_EQ(errno, 0) << size << " bytes to the end";
    }
  }
  EXPECT_EQ(munmap(room, kRoom), 0);
}

}  // namespace
}  // namespace zqv::base
