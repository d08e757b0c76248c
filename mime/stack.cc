#include "mime/stack.h"

#include <cstdint>

#if defined(__APPLE__)
#include <pthread.h>
#else
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>
#endif

namespace zqv::mime {
namespace {

// The lowest address that the stack may grow down to.
#if defined(__APPLE__)

std::optional<std::uintptr_t> StackEnd(std::uintptr_t) {
  const pthread_t self = pthread_self();
  return reinterpret_cast<std::uintptr_t>(pthread_get_stackaddr_np(self)) -
         pthread_get_stacksize_np(self);
}

#else

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// From the kernel's list of mappings, not from pthread_getattr_np: that one binds the library to a
// newer C library than it needs. A thread's stack is a mapping of its own; the first thread's grows
// on demand, up to its limit or the mapping below.
std::optional<std::uintptr_t> StackEnd(std::uintptr_t here) {
  const std::unique_ptr<std::FILE, CloseFile> maps(std::fopen("/proc/self/maps", "r"));
  if (maps == nullptr) return std::nullopt;
  char line[512];
  std::uintptr_t below = 0;  // where the mapping before ends
  while (std::fgets(line, sizeof line, maps.get()) != nullptr) {
    unsigned long begin = 0;
    unsigned long end = 0;
    if (std::sscanf(line, "%lx-%lx", &begin, &end) != 2) continue;
    if (here < begin || here >= end) {
      below = end;
      continue;
    }
    if (std::string_view(line).find("[stack]") == std::string_view::npos) return begin;
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0) return begin;
    const std::uintptr_t lowest = limit.rlim_cur < end ? end - limit.rlim_cur : 0;
    return std::max(lowest, below);
  }
  return std::nullopt;
}

#endif

}  // namespace

std::optional<std::size_t> StackLeft() {
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  const std::optional<std::uintptr_t> end = StackEnd(here);
  if (!end.has_value()) return std::nullopt;
  return here > *end ? here - *end : 0;
}

}  // namespace zqv::mime
