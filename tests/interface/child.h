// Runs code in a forked child process. A crash, a hang, a leak or an error that the stand-in
// reports in the child fails the test and names the configuration. The library's state in this
// process does not change.
#pragma once

#if !defined(_WIN32)
#include <sys/mman.h>
#endif

#include <functional>
#include <new>
#include <string>

#include "tests/support/build.h"

namespace zqv::interface_test {

// The sanitizer that this program is built with.
#if defined(__has_feature)
#define ZQV_HAS_FEATURE(feature) __has_feature(feature)
#else
#define ZQV_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || ZQV_HAS_FEATURE(address_sanitizer)
inline constexpr bool kAddressSanitized = true;
#else
inline constexpr bool kAddressSanitized = false;
#endif
#if defined(__SANITIZE_THREAD__) || ZQV_HAS_FEATURE(thread_sanitizer)
inline constexpr bool kThreadSanitized = true;
#else
inline constexpr bool kThreadSanitized = false;
#endif

// True with either sanitizer: both make a program slow, and both reserve terabytes of address
// space.
inline constexpr bool kSanitized = kAddressSanitized || kThreadSanitized;

using test::kShips;

// Whether this program runs in an emulator or in Wine, where threads that compete for the host's
// lock take at least three times as long.
#if defined(_WIN32) || defined(ZQV_EMULATED)
inline constexpr bool kEmulated = true;
#else
inline constexpr bool kEmulated = false;
#endif

// The number of repetitions: `plain`, or the smaller `slow` with a sanitizer or an emulator.
constexpr int Repetitions(int plain, int slow) { return kSanitized || kEmulated ? slow : plain; }

// Runs `body` in a child process. Expects the child to end within `seconds`, without a failed
// expectation, a C++ exception or, where a leak checker is present, a leak.
void InChild(const std::string& configuration, const std::function<void()>& body,
             unsigned seconds = 60);

// Does the same, and returns the text that `body` returned in the child.
std::string TextFromChild(const std::string& configuration,
                          const std::function<std::string()>& body, unsigned seconds = 60);

#if !defined(_WIN32)
// Trivial data in memory that a child process shares with its parent.
template <typename T>
class SharedWithChild {
 public:
  SharedWithChild() {
    void* const memory =
        mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    value_ = new (memory) T();
  }
  ~SharedWithChild() { munmap(value_, sizeof(T)); }
  SharedWithChild(const SharedWithChild&) = delete;
  SharedWithChild& operator=(const SharedWithChild&) = delete;

  T& operator*() const { return *value_; }
  T* operator->() const { return value_; }

 private:
  T* value_;
};
#endif

}  // namespace zqv::interface_test
