// The debug log: one line an event, written only while the process-wide switch is on. Callers test
// the switch before they format anything, which ZQV_LOG does for them.
#pragma once

#include <atomic>

// GCC for Windows takes "printf" for that of the system's old library, which lacks %zu; what we
// call there is the standard's.
#if defined(_WIN32) && !defined(__clang__)
#define ZQV_PRINTF gnu_printf
#else
#define ZQV_PRINTF printf
#endif

namespace zqv::base {

// The switch behind the hidden shared property `Debugging`; false at load. Any thread may change it
// at any time.
extern std::atomic<bool> DebuggingEnabled;

inline bool IsLogging() { return DebuggingEnabled.load(std::memory_order_relaxed); }

// Begins every line; the first string argument of every format.
inline constexpr char kLogPrefix[] = "ZQV Debug: ";

// Formats as printf does and writes the text, cut after 4095 bytes, as one line to the platform's
// log, whatever the switch says.
[[gnu::format(ZQV_PRINTF, 1, 2)]] void LogMessageX(const char* format, ...);

}  // namespace zqv::base

// Logs `format`, whose first conversion is the prefix, while debugging is on. A macro, so that the
// compiler checks the arguments against the format and nothing is computed when it is off.
#define ZQV_LOG(format, ...)                                                  \
  do {                                                                        \
    if (::zqv::base::IsLogging())                                             \
      ::zqv::base::LogMessageX(format, ::zqv::base::kLogPrefix, __VA_ARGS__); \
  } while (false)
