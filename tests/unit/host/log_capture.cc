#include "tests/unit/host/log_capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "host/log.h"

namespace zqv::test {

LogCapture::LogCapture()
    : was_on_(host::DebuggingEnabled),
      standard_error_(dup(STDERR_FILENO)),
      file_(memfd_create("log", MFD_CLOEXEC)) {
  std::fflush(stderr);
  dup2(file_, STDERR_FILENO);
  host::DebuggingEnabled = true;
}

LogCapture::~LogCapture() {
  host::DebuggingEnabled = was_on_;
  dup2(standard_error_, STDERR_FILENO);
  close(standard_error_);
  close(file_);
}

std::string LogCapture::Text() const {
  std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_CUR)), '\0');
  const ssize_t read = pread(file_, text.data(), text.size(), 0);
  text.resize(read < 0 ? 0 : static_cast<std::size_t>(read));
  return text;
}

std::string Logged(std::initializer_list<std::string> lines) {
  std::string text;
  for (const std::string& line : lines) text += host::kLogPrefix + line + '\n';
  return text;
}

}  // namespace zqv::test
