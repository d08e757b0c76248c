#include "base/thread_slot.h"

#if defined(__APPLE__)
#include <pthread.h>
#elif defined(_WIN32)
#include <windows.h>
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

#elif defined(_WIN32)

// The system's own slots, for the same reason. TLS_OUT_OF_INDEXES when none is left.
DWORD GetIndex() noexcept {
  static const DWORD index = TlsAlloc();
  return index;
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
#elif defined(_WIN32)
void* GetThreadSlot() noexcept {
  return GetIndex() != TLS_OUT_OF_INDEXES ? TlsGetValue(GetIndex()) : nullptr;
}
void SetThreadSlot(void* value) noexcept {
  if (GetIndex() != TLS_OUT_OF_INDEXES) static_cast<void>(TlsSetValue(GetIndex(), value));
}
#else
void* GetThreadSlot() noexcept { return g_slot; }
void SetThreadSlot(void* value) noexcept { g_slot = value; }
#endif

}  // namespace zqv::base
