// Formats a line of the debug log into a buffer on the stack and hands it to the platform
// (system_log.h). Allocates nothing, so that it works when memory has run out.
#include "base/log.h"

#include <cstdarg>
#include <cstdio>

#include "base/system_log.h"

namespace zqv::base {

std::atomic<bool> DebuggingEnabled{false};

void LogMessageX(const char* format, ...) {
  char text[4096] = {};
  va_list arguments;
  va_start(arguments, format);
  static_cast<void>(std::vsnprintf(text, sizeof text, format, arguments));
  va_end(arguments);
  WriteLogLine(text);
}

}  // namespace zqv::base
