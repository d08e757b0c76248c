// The debug log of a test as text.
#pragma once

#include <initializer_list>
#include <string>

#include "tests/support/error_capture.h"

namespace zqv::test {

// While one lives, the log is on and standard error goes to it alone.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // All that was written so far.
  std::string Text() const { return errors_.Text(); }

 private:
  const bool was_on_;
  const ErrorCapture errors_;
};

// The text of these lines, each behind the log's prefix.
std::string Logged(std::initializer_list<std::string> lines);

}  // namespace zqv::test
