#include "tests/unit/host/log_capture.h"

#include "host/log.h"

namespace zqv::test {

LogCapture::LogCapture() : was_on_(host::DebuggingEnabled) { host::DebuggingEnabled = true; }

LogCapture::~LogCapture() { host::DebuggingEnabled = was_on_; }

std::string Logged(std::initializer_list<std::string> lines) {
  std::string text;
  for (const std::string& line : lines) text += host::kLogPrefix + line + '\n';
  return text;
}

}  // namespace zqv::test
