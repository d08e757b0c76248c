// A Windows process has about a thousand slots for thread-local storage (TLS). The C++ runtime that
// is linked into the library allocates some of them and never frees them, so a host that loads and
// unloads the library repeatedly would run out of slots.
//
// GCC's runtime: calls of TlsAlloc are redirected to a function that remembers the slots; they are
// freed when the library is unloaded. Clang's runtime: the library stays loaded instead.
#include <windows.h>

#include <atomic>
#include <cstddef>

#include "plugin/unloading.h"

#if defined(__GNUC__) && !defined(__clang__)

// The linker option --wrap redirects calls of TlsAlloc: __wrap_ is what the library calls, __real_
// the system's function.
extern "C" {
using Allocator = DWORD(WINAPI*)();
extern Allocator __real___imp_TlsAlloc;
extern Allocator __wrap___imp_TlsAlloc;
}

namespace zqv::plugin {
namespace {

// More than enough: the library itself uses one slot (base/thread_slot.cc), the runtime two.
constexpr std::size_t kMost = 16;
DWORD g_slots[kMost];
std::atomic<std::size_t> g_count{0};

DWORD WINAPI AllocateSlot() {
  const DWORD slot = __real___imp_TlsAlloc();
  const std::size_t number = slot != TLS_OUT_OF_INDEXES ? g_count++ : kMost;
  if (number < kMost) g_slots[number] = slot;
  return slot;
}

// Runs when the library is unloaded, after the runtime has freed the objects whose addresses it
// keeps in the slots.
[[gnu::destructor]] void FreeSlots() {
  for (std::size_t i = 0; i < g_count && i < kMost; ++i) TlsFree(g_slots[i]);
}

}  // namespace

void PrepareForUnloading() noexcept {}

}  // namespace zqv::plugin

Allocator __wrap___imp_TlsAlloc = &zqv::plugin::AllocateSlot;

#else

namespace zqv::plugin {

// This runtime registers a function that Windows calls at the end of each thread, even after the
// library was unloaded. So the library is kept loaded for the life of the process.
void PrepareForUnloading() noexcept {
  HMODULE self = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const wchar_t*>(&PrepareForUnloading), &self);
}

}  // namespace zqv::plugin

#endif
