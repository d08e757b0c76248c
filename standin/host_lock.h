// The host's lock: whatever several threads ask of the host takes place in some order.
//
// One lock for all that the host keeps: counts, faults, things and their lock counts, the ledger,
// the quarantine, pending exceptions. An entry point holds it for the whole of its call, and the
// application side for each of its small steps; it is never held while a function of the plug-in
// runs, so constructors, getters and methods of several threads run side by side. The store gives
// it up around a destructor that it calls.
//
// A thread holds it at most once; taking it twice is fatal. While the process has had no second
// thread, no mutex is touched and taking it costs next to nothing.
#pragma once

#include <cstdint>
#include <mutex>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

#include "standin/fatal.h"

namespace zqv::standin {
namespace internal {

enum class Hold : unsigned char {
  kNone,
  kWithoutMutex,  // taken while there was one thread
  kWithMutex,
};

inline std::mutex g_host_mutex;
inline thread_local Hold g_hold = Hold::kNone;
// Guarded by the mutex.
inline const Hold* g_last_holder = nullptr;  // tells threads apart
inline std::uint64_t g_handovers = 0;

// False when that is not known.
inline bool IsSingleThreaded() {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

// Where there are, or may be, several threads, and where it is held already.
__attribute__((noinline)) inline void AcquireAmongThreads() noexcept {
  if (g_hold != Hold::kNone) Fatal("the host's lock is taken twice by one thread");
  g_host_mutex.lock();
  g_hold = Hold::kWithMutex;
  if (g_last_holder == &g_hold) return;
  g_last_holder = &g_hold;
  ++g_handovers;
}

inline void AcquireHost() noexcept {
  if (!IsSingleThreaded() || g_hold != Hold::kNone) return AcquireAmongThreads();
  g_hold = Hold::kWithoutMutex;
}

inline void ReleaseHost() noexcept {
  const bool has_mutex = g_hold == Hold::kWithMutex;
  g_hold = Hold::kNone;
  if (has_mutex) g_host_mutex.unlock();
}

}  // namespace internal

// Holds the lock while it lives.
class HostLock {
 public:
  HostLock() { internal::AcquireHost(); }
  ~HostLock() { internal::ReleaseHost(); }
  HostLock(const HostLock&) = delete;
  HostLock& operator=(const HostLock&) = delete;

  // How often the lock went from one thread to another. When two calls give the same number, no
  // other thread was in the host between them.
  static std::uint64_t Handovers() { return internal::g_handovers; }
};

// Gives the lock up while it lives, for a function of the plug-in; does nothing where the lock is
// not held.
class HostLockGap {
 public:
  HostLockGap() : is_held_(internal::g_hold != internal::Hold::kNone) {
    if (is_held_) internal::ReleaseHost();
  }
  ~HostLockGap() {
    if (is_held_) internal::AcquireHost();
  }
  HostLockGap(const HostLockGap&) = delete;
  HostLockGap& operator=(const HostLockGap&) = delete;

 private:
  const bool is_held_;
};

}  // namespace zqv::standin
