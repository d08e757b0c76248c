// Standard error of a test as text; on Windows, what it says to debuggers. One lives at a time.
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
#if defined(_WIN32)
  void* const handler_;  // of the system's exceptions
#else
  const int standard_error_;  // the descriptor it had before
  const int file_;
#endif
};

}  // namespace zqv::test
