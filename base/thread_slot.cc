#include "base/thread_slot.h"

#if defined(__APPLE__)
#include <pthread.h>
#endif

namespace zqv::base {
namespace {

#if defined(__APPLE__)

// The system's own slots: a compiler's thread-local variable is allocated at its first use, and the
// process ends when that fails. Null when the system has no slot left.
const pthread_key_t* Key() noexcept {
  static pthread_key_t g_key;
  static const bool is_made = pthread_key_create(&g_key, nullptr) == 0;
  return is_made ? &g_key : nullptr;
}

#else

// In the memory that the loader sets aside for each thread: any other kind is allocated at its
// first use, and the process ends when that fails.
[[gnu::tls_model("initial-exec")]] thread_local void* g_slot = nullptr;

#endif

}  // namespace

#if defined(__APPLE__)
void* GetThreadSlot() noexcept { return Key() != nullptr ? pthread_getspecific(*Key()) : nullptr; }
void SetThreadSlot(void* value) noexcept {
  if (Key() != nullptr) static_cast<void>(pthread_setspecific(*Key(), value));
}
#else
void* GetThreadSlot() noexcept { return g_slot; }
void SetThreadSlot(void* value) noexcept { g_slot = value; }
#endif

}  // namespace zqv::base
