// Captures the debug log, so that a test can compare it.
#pragma once

#include <initializer_list>
#include <string>

#include "tests/support/error_capture.h"

namespace zqv::test {

// While an instance exists, the log is on, and what is written to standard error goes to the
// instance only.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // Everything written so far.
  std::string Text() const { return errors_.Text(); }

 private:
  const bool was_on_;
  const ErrorCapture errors_;
};

// The text of the log when it consists of these lines, each with the log's prefix before it.
std::string Logged(std::initializer_list<std::string> lines);

}  // namespace zqv::test
