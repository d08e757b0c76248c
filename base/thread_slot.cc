// macOS and Windows: one slot of the system, allocated for the whole process at the first use.
// Elsewhere: a thread_local variable in the static block that the loader allocates with each
// thread. An ordinary thread_local of a shared library is allocated at a thread's first access, and
// the process is ended when that fails.
#include "base/thread_slot.h"

#if defined(__APPLE__)
#include <pthread.h>
#elif defined(_WIN32)
#include <windows.h>
#endif

namespace zqv::base {
namespace {

#if defined(__APPLE__)

// The key of the slot; null when the system has no slot left.
const pthread_key_t* Key() noexcept {
  static pthread_key_t g_key;
  static const bool is_made = pthread_key_create(&g_key, nullptr) == 0;
  return is_made ? &g_key : nullptr;
}

#elif defined(_WIN32)

// The index of the slot; TLS_OUT_OF_INDEXES when the system has none left.
DWORD GetIndex() noexcept {
  static const DWORD index = TlsAlloc();
  return index;
}

#else

// "initial-exec" puts the variable into each thread's static block.
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
