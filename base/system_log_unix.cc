// The debug log on Linux goes to standard error.
#include <sys/uio.h>
#include <unistd.h>

#include <cstring>

#include "base/system_log.h"

namespace zqv::base {

void WriteLogLine(const char* text) noexcept {
  // One system call a line keeps lines of different threads and processes apart. Nothing is
  // allocated, so that a line can be written while std::bad_alloc is handled.
  char line_break = '\n';
  const iovec pieces[] = {{const_cast<char*>(text), std::strlen(text)}, {&line_break, 1}};
  if (::writev(STDERR_FILENO, pieces, 2) < 0) return;  // logging must not fail the caller
}

}  // namespace zqv::base
