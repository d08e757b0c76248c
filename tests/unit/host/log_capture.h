// The debug log of a test as text.
#pragma once

#include <initializer_list>
#include <string>

namespace zqv::test {

// While one lives, the log is on and standard error goes to it alone.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // All that was written so far.
  std::string Text() const;

 private:
  const bool was_on_;
  const int standard_error_;  // the descriptor it had before
  const int file_;
};

// The text of these lines, each behind the log's prefix.
std::string Logged(std::initializer_list<std::string> lines);

}  // namespace zqv::test
