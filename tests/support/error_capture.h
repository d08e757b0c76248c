// Captures what a test writes to standard error or, on Windows, to the debugger. Only one instance
// may exist at a time.
#pragma once

#include <string>

namespace zqv::test {

// While an instance exists, standard error goes to it only. The exception is a sanitizer's report,
// which ends the process and so goes to the original standard error.
class ErrorCapture {
 public:
  ErrorCapture();
  ~ErrorCapture();
  ErrorCapture(const ErrorCapture&) = delete;
  ErrorCapture& operator=(const ErrorCapture&) = delete;

  // Everything written so far.
  std::string Text() const;

 private:
#if defined(_WIN32)
  void* const handler_;  // of the handler for debugger messages
#else
  const int standard_error_;  // a descriptor of the original standard error
  const int file_;
#endif
};

}  // namespace zqv::test
