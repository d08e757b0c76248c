// The host's mutex. Holding it is called holding the host's lock; it has nothing to do with the
// locks of things, which are references.
//
// It protects everything that the host stores: counts, faults, things and their lock counts, the
// ledger, the quarantine, pending exceptions. An entry point holds it during its whole call. The
// application side holds it for single steps. It is never held while a function of the plug-in
// runs, so constructors, getters and methods can run in several threads at the same time. Therefore
// the store releases it while it calls a destructor.
//
// The mutex is not recursive: acquiring it twice in one thread is fatal. As long as the process has
// had only one thread, the mutex itself is not used, so that acquiring costs almost nothing.
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
  kWithoutMutex,  // acquired while the process had one thread
  kWithMutex,
};

inline std::mutex g_host_mutex;
inline thread_local Hold g_hold = Hold::kNone;
// The variables below are protected by the mutex.
inline const Hold* g_last_holder = nullptr;  // compared only; identifies the thread
inline std::uint64_t g_handovers = 0;

// False also when the C library does not tell.
inline bool IsSingleThreaded() {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

// The slow path: there are or may be several threads, or this thread holds the mutex already.
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

// Holds the host's mutex during its lifetime.
class HostLock {
 public:
  HostLock() { internal::AcquireHost(); }
  ~HostLock() { internal::ReleaseHost(); }
  HostLock(const HostLock&) = delete;
  HostLock& operator=(const HostLock&) = delete;

  // How often the mutex was acquired by another thread than the time before. If two calls return
  // the same number, no other thread used the host between them. The caller must hold the mutex.
  static std::uint64_t Handovers() { return internal::g_handovers; }
};

// Releases the host's mutex during its lifetime, so that a function of the plug-in can run. Does
// nothing when this thread does not hold the mutex.
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
