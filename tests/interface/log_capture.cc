#include "tests/interface/log_capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

namespace zqv::interface_test {

LogCapture::LogCapture()
    : standard_error_(dup(STDERR_FILENO)), file_(memfd_create("log", MFD_CLOEXEC)) {
  std::fflush(stderr);
  dup2(file_, STDERR_FILENO);
}

LogCapture::~LogCapture() {
  dup2(standard_error_, STDERR_FILENO);
  close(standard_error_);
  close(file_);
}

std::vector<std::string> LogCapture::Lines() const {
  std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
  const ssize_t got = pread(file_, text.data(), text.size(), 0);
  text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  if (start < text.size()) lines.push_back(text.substr(start) + "...");
  return lines;
}

}  // namespace zqv::interface_test
