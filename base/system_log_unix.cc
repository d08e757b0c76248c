// The debug log on Linux: standard error.
#include <sys/uio.h>
#include <unistd.h>

#include <cstring>

#include "base/system_log.h"

namespace zqv::base {

void WriteLogLine(const char* text) noexcept {
  // One call a line, so that lines of several processes and threads do not mix, and no memory of
  // its own, so that it can be used while an exception is handled.
  char line_break = '\n';
  const iovec pieces[] = {{const_cast<char*>(text), std::strlen(text)}, {&line_break, 1}};
  if (::writev(STDERR_FILENO, pieces, 2) < 0) return;  // a log that fails is not worth a failure
}

}  // namespace zqv::base
