#include "tests/unit/base/log_capture.h"

#include "base/log.h"

namespace zqv::test {

LogCapture::LogCapture() : was_on_(base::DebuggingEnabled) { base::DebuggingEnabled = true; }

LogCapture::~LogCapture() { base::DebuggingEnabled = was_on_; }

std::string Logged(std::initializer_list<std::string> lines) {
  std::string text;
  for (const std::string& line : lines) text += ZQV_LOG_PREFIX + line + '\n';
  return text;
}

}  // namespace zqv::test
