// Work in a forked child: a crash, a hang, a leak or the host's refusal there fails the test and
// names the configuration, and the library's state in this process stays as it was.
#pragma once

#if !defined(_WIN32)
#include <sys/mman.h>
#endif

#include <functional>
#include <new>
#include <string>

namespace zqv::interface_test {

// Which sanitizer watches this program.
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

// Whether one does: they are slow and take terabytes of address space.
inline constexpr bool kSanitized = kAddressSanitized || kThreadSanitized;

// Whether this is how the library ships. Others need more stack and memory.
#if !defined(__OPTIMIZE__) || defined(ZQV_INSTRUMENTED)
inline constexpr bool kShips = false;
#else
inline constexpr bool kShips = true;
#endif

// Whether programs for Windows are run by Wine, where threads that share the host's lock take three
// times as long.
#if defined(_WIN32)
inline constexpr bool kWine = true;
#else
inline constexpr bool kWine = false;
#endif

// What the slowness of a sanitizer or of Wine leaves of a number of repetitions.
constexpr int Repetitions(int plain, int slow) { return kSanitized || kWine ? slow : plain; }

// Runs `body` in a child; expects it to end within `seconds`, with no failed expectation, no C++
// exception and, where a leak checker runs, without a leak.
void InChild(const std::string& configuration, const std::function<void()>& body,
             unsigned seconds = 60);

// The same; gives the text that `body` gave there.
std::string TextFromChild(const std::string& configuration,
                          const std::function<std::string()>& body, unsigned seconds = 60);

#if !defined(_WIN32)
// Plain data that a child writes and its parent reads.
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
