// On Linux, madvise() asks for 2 MB pages in that part of the buffer which starts and ends on a
// 2 MB boundary. Other systems have no such call for memory that is already allocated.
#include "base/large_pages.h"

#if defined(__linux__)
#include <sys/mman.h>

#include <cstdint>

namespace zqv::base {

void PreferLargePages(char* bytes, std::size_t size) {
  constexpr std::size_t kPage = std::size_t{2} << 20U;
  if (size < 2 * kPage) return;
  const auto address = reinterpret_cast<std::uintptr_t>(bytes);
  const std::size_t before = (kPage - address % kPage) % kPage;
  const std::size_t length = (size - before) / kPage * kPage;
  madvise(bytes + before, length, MADV_HUGEPAGE);  // only a hint: a failure changes no result
}

}  // namespace zqv::base
#else
namespace zqv::base {

void PreferLargePages(char*, std::size_t) {}

}  // namespace zqv::base
#endif
