// Standard error of a test as text.
#pragma once

#include <string>

namespace zqv::test {

// While one lives, standard error goes to it alone. Only a sanitizer's report goes where it always
// does: it ends the process, so that nobody would see it here.
class ErrorCapture {
 public:
  ErrorCapture();
  ~ErrorCapture();
  ErrorCapture(const ErrorCapture&) = delete;
  ErrorCapture& operator=(const ErrorCapture&) = delete;

  // All that was written so far.
  std::string Text() const;

 private:
  const int standard_error_;  // the descriptor it had before
  const int file_;
};

}  // namespace zqv::test
