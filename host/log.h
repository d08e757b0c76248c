// The debug log: one line an event, written only while the hidden shared property `Debugging` is
// on. Callers ask the switch before they format anything, which ZQV_LOG does for them.
#pragma once

#include "abi/records.h"

namespace zqv::host {

// The process-wide switch, false at load.
extern bool DebuggingEnabled;

// Begins every line; the first string argument of every format.
inline constexpr char kLogPrefix[] = "ZQV Debug: ";

// Formats as printf does and writes the text, cut after 4095 bytes, as one line to the platform's
// log, whatever the switch says.
[[gnu::format(printf, 1, 2)]] void LogMessageX(const char* format, ...);

// Getter and setter of `Debugging`; any non-zero value is true. Turning the log on writes a line.
abi::RBBoolean getDebugging();
void setDebugging(abi::RBBoolean value);

}  // namespace zqv::host

// Logs `format`, whose first conversion is the prefix, while debugging is on. A macro, so that the
// compiler checks the arguments against the format and nothing is computed when it is off.
#define ZQV_LOG(format, ...)                                                  \
  do {                                                                        \
    if (::zqv::host::DebuggingEnabled)                                        \
      ::zqv::host::LogMessageX(format, ::zqv::host::kLogPrefix, __VA_ARGS__); \
  } while (false)
