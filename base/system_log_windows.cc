// The debug log on Windows goes to OutputDebugString: to an attached debugger, or else to a program
// that shows the debug output of all processes.
#include <windows.h>

#include <cstddef>

#include "base/system_log.h"

namespace zqv::base {

void WriteLogLine(const char* text) noexcept {
  // One call a line keeps lines of different threads and processes apart. Nothing is allocated, so
  // that a line can be written while std::bad_alloc is handled.
  constexpr std::size_t kLongest = 4095;
  char line[kLongest + 2];
  std::size_t length = 0;
  for (; length < kLongest && text[length] != '\0'; ++length) line[length] = text[length];
  line[length] = '\n';
  line[length + 1] = '\0';
  OutputDebugStringA(line);
}

}  // namespace zqv::base
