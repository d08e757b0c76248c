// A process there has some thousand slots for what belongs to a thread, and the runtime within the
// library takes slots that it never gives back: a host that loads and frees the library again and
// again would run out of them.
#include <windows.h>

#include <atomic>
#include <cstddef>

#include "plugin/unloading.h"

#if defined(__GNUC__) && !defined(__clang__)

// The linker lets all calls of TlsAlloc within the library come here.
extern "C" {
using Allocator = DWORD(WINAPI*)();
extern Allocator __real___imp_TlsAlloc;
extern Allocator __wrap___imp_TlsAlloc;
}

namespace zqv::plugin {
namespace {

// This library has one slot of its own, the runtime two.
constexpr std::size_t kMost = 16;
DWORD g_slots[kMost];
std::atomic<std::size_t> g_count{0};

DWORD WINAPI AllocateSlot() {
  const DWORD slot = __real___imp_TlsAlloc();
  const std::size_t number = slot != TLS_OUT_OF_INDEXES ? g_count++ : kMost;
  if (number < kMost) g_slots[number] = slot;
  return slot;
}

// Runs when the library is unloaded, after the runtime has freed what it keeps in the slots.
[[gnu::destructor]] void FreeSlots() {
  for (std::size_t i = 0; i < g_count && i < kMost; ++i) TlsFree(g_slots[i]);
}

}  // namespace

void PrepareForUnloading() noexcept {}

}  // namespace zqv::plugin

Allocator __wrap___imp_TlsAlloc = &zqv::plugin::AllocateSlot;

#else

namespace zqv::plugin {

// The other runtime has the system call it at the end of each thread, also when it is gone by then.
// So the library stays for the life of the process.
void PrepareForUnloading() noexcept {
  HMODULE self = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const wchar_t*>(&PrepareForUnloading), &self);
}

}  // namespace zqv::plugin

#endif
