#include "host/log.h"

#include <cstdarg>
#include <cstdio>

#include "host/platform.h"

namespace zqv::host {

bool DebuggingEnabled = false;

void LogMessageX(const char* format, ...) {
  char text[4096] = {};
  va_list arguments;
  va_start(arguments, format);
  static_cast<void>(std::vsnprintf(text, sizeof text, format, arguments));
  va_end(arguments);
  WriteLogLine(text);
}

abi::RBBoolean getDebugging() { return DebuggingEnabled ? 1 : 0; }

void setDebugging(abi::RBBoolean value) {
  const bool was_on = DebuggingEnabled;
  DebuggingEnabled = value != 0;
  if (!was_on) ZQV_LOG("%s%s", "ZQV debug logging enabled.");
}

}  // namespace zqv::host
