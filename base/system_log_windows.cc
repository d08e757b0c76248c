// The debug log on Windows: what a debugger shows, or any program that listens in its place.
#include <windows.h>

#include <cstddef>

#include "base/system_log.h"

namespace zqv::base {

void WriteLogLine(const char* text) noexcept {
  // One call a line, so that lines of several processes and threads do not mix, and no memory of
  // its own, so that it can be used while an exception is handled.
  constexpr std::size_t kLongest = 4095;
  char line[kLongest + 2];
  std::size_t length = 0;
  for (; length < kLongest && text[length] != '\0'; ++length) line[length] = text[length];
  line[length] = '\n';
  line[length + 1] = '\0';
  OutputDebugStringA(line);
}

}  // namespace zqv::base
