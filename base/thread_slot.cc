// macOS and Windows: one slot of the system, allocated for the whole process at the first use.
// Elsewhere: a thread_local variable in the static block that the loader allocates with each
// thread. An ordinary thread_local of a shared library is allocated at a thread's first access, and
// the process is ended when that fails.
#include "base/thread_slot.h"

#if defined(__APPLE__)
#include <pthread.h>

#include <atomic>
#elif defined(_WIN32)
#include <windows.h>
#endif

namespace zqv::base {
namespace {

#if defined(__APPLE__)

pthread_key_t g_key;
std::atomic<bool> g_has_key{false};

// False when the system has no slot left, and once the library is unloaded or the process ends.
bool HasKey() noexcept {
  static const bool was_made = g_has_key = pthread_key_create(&g_key, nullptr) == 0;
  return was_made && g_has_key;
}

// A process has some hundred slots. One that loads and unloads the library again and again would
// run out of them.
[[gnu::destructor]] void GiveKeyBack() {
  if (g_has_key.exchange(false)) static_cast<void>(pthread_key_delete(g_key));
}

#elif defined(_WIN32)

// The index of the slot; TLS_OUT_OF_INDEXES when the system has none left.
DWORD GetIndex() noexcept {
  static const DWORD index = TlsAlloc();
  return index;
}

#else

// The "initial-exec" model puts the variable into that static block, so that its first access in a
// thread allocates nothing.
[[gnu::tls_model("initial-exec")]] thread_local void* g_slot = nullptr;

#endif

}  // namespace

#if defined(__APPLE__)
void* GetThreadSlot() noexcept { return HasKey() ? pthread_getspecific(g_key) : nullptr; }
void SetThreadSlot(void* value) noexcept {
  if (HasKey()) static_cast<void>(pthread_setspecific(g_key, value));
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
