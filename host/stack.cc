#include "host/stack.h"

#include <pthread.h>

#include <cstdint>

#if defined(__linux__)

// Bound to the C library's first version of the two, so that the library loads on older systems,
// and weakly: there they live in a library that a program without threads does not load.
#if defined(__x86_64__)
#define ZQV_FIRST_GLIBC "GLIBC_2.2.5"
#elif defined(__aarch64__)
#define ZQV_FIRST_GLIBC "GLIBC_2.17"
#endif
__asm__(".symver pthread_getattr_np, pthread_getattr_np@" ZQV_FIRST_GLIBC);
__asm__(".symver pthread_attr_getstack, pthread_attr_getstack@" ZQV_FIRST_GLIBC);
extern "C" {
[[gnu::weak]] int pthread_getattr_np(pthread_t thread, pthread_attr_t* attributes) noexcept;
[[gnu::weak]] int pthread_attr_getstack(const pthread_attr_t* attributes, void** address,
                                        size_t* size) noexcept;
}

#endif

namespace zqv::host {
namespace {

// The lowest address that the calling thread's stack may grow down to.
#if defined(__APPLE__)

std::optional<std::uintptr_t> StackEnd() {
  const pthread_t self = pthread_self();
  return reinterpret_cast<std::uintptr_t>(pthread_get_stackaddr_np(self)) -
         pthread_get_stacksize_np(self);
}

#else

std::optional<std::uintptr_t> StackEnd() {
  if (&pthread_getattr_np == nullptr || &pthread_attr_getstack == nullptr) return std::nullopt;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return std::nullopt;
  void* lowest = nullptr;
  std::size_t size = 0;
  const bool known = pthread_attr_getstack(&attributes, &lowest, &size) == 0;
  pthread_attr_destroy(&attributes);
  if (!known) return std::nullopt;
  return reinterpret_cast<std::uintptr_t>(lowest);
}

#endif

}  // namespace

std::optional<std::size_t> StackLeft() {
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  const std::optional<std::uintptr_t> end = StackEnd();
  if (!end.has_value()) return std::nullopt;
  return here > *end ? here - *end : 0;
}

}  // namespace zqv::host
