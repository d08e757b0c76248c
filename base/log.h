// The debug log: one line for each event, written only while a process-wide switch is on. ZQV_LOG
// tests the switch before it formats anything; LogMessageX always writes.
#pragma once

#include <atomic>

// The format that the compiler checks calls of LogMessageX against. For Windows GCC's "printf"
// means the one of msvcrt.dll, which lacks %zu; "gnu_printf" means the standard one, which is what
// is called.
#if defined(_WIN32) && !defined(__clang__)
#define ZQV_PRINTF gnu_printf
#else
#define ZQV_PRINTF printf
#endif

namespace zqv::base {

// The switch, which applications set through the hidden shared property MimeEmailZQV.Debugging.
// False at load. Any thread may change it at any time. The name is given by the interface
// (CONTRIBUTING.md).
extern std::atomic<bool> DebuggingEnabled;

inline bool IsLogging() { return DebuggingEnabled.load(std::memory_order_relaxed); }

// The text that begins every line of ZQV_LOG.
#define ZQV_LOG_PREFIX "ZQV Debug: "

// Formats like printf and writes the result as one line to the platform's log (system_log.h), even
// when the switch is off. The result is cut after 4095 bytes.
[[gnu::format(ZQV_PRINTF, 1, 2)]] void LogMessageX(const char* format, ...);

}  // namespace zqv::base

// Logs a line while debugging is on: ZQV_LOG(FORMAT, ARGUMENT...), as printf takes them; FORMAT is
// a string literal. A macro, so that the arguments are not evaluated while debugging is off and the
// compiler checks them against the format.
#define ZQV_LOG(...)                                                                    \
  do {                                                                                  \
    if (::zqv::base::IsLogging()) ::zqv::base::LogMessageX(ZQV_LOG_PREFIX __VA_ARGS__); \
  } while (false)
