// Standard error of a test as lines.
#pragma once

#include <string>
#include <vector>

namespace zqv::interface_test {

// While one lives, standard error goes to it alone.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // What was written so far, without the line ends; a last line without one gets three dots.
  std::vector<std::string> Lines() const;

 private:
  const int standard_error_;  // the descriptor it had before
  const int file_;
};

}  // namespace zqv::interface_test
