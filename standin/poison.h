// Makes memory inaccessible when the program is built with AddressSanitizer; otherwise these
// functions do nothing.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZQV_STANDIN_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ZQV_STANDIN_ASAN 1
#endif

#ifdef ZQV_STANDIN_ASAN
#include <sanitizer/asan_interface.h>
#endif

namespace zqv::standin {

// `kPoisonWorks` tells whether access to poisoned memory is detected. The start of a poisoned or
// unpoisoned range must be a multiple of 8.
#ifdef ZQV_STANDIN_ASAN
inline constexpr bool kPoisonWorks = true;
inline void Poison(const void* start, std::size_t size) {
  __asan_poison_memory_region(start, size);
}
inline void Unpoison(const void* start, std::size_t size) {
  __asan_unpoison_memory_region(start, size);
}
#else
inline constexpr bool kPoisonWorks = false;
inline void Poison(const void*, std::size_t) {}
inline void Unpoison(const void*, std::size_t) {}
#endif

}  // namespace zqv::standin
