#include "tests/support/error_capture.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>

#include "tests/support/system_log_lines.h"
#include "tests/support/unnamed_file.h"

#if defined(__SANITIZE_ADDRESS__)
#define ZQV_TEST_ASAN
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZQV_TEST_ASAN
#endif
#endif
#ifdef ZQV_TEST_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

namespace zqv::test {
namespace {

void SendReportsTo([[maybe_unused]] std::intptr_t descriptor) {
#ifdef ZQV_TEST_ASAN
  __sanitizer_set_report_fd(reinterpret_cast<void*>(descriptor));
#endif
}

}  // namespace

ErrorCapture::ErrorCapture() : standard_error_(dup(STDERR_FILENO)), file_(OpenUnnamedFile()) {
  std::fflush(stderr);
  SendReportsTo(standard_error_);
  dup2(file_, STDERR_FILENO);
}

ErrorCapture::~ErrorCapture() {
  std::fflush(stderr);
  dup2(standard_error_, STDERR_FILENO);
  SendReportsTo(STDERR_FILENO);
  close(standard_error_);
  close(file_);
}

std::string ErrorCapture::Text() const {
  const std::string text = TextOfFile(file_);
#if defined(__APPLE__)
  return WithoutSystemLogPrefixes(text);
#else
  return text;
#endif
}

}  // namespace zqv::test
