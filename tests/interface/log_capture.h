// Captures the debug log of a test, as lines.
#pragma once

#include <string>
#include <vector>

#include "tests/support/error_capture.h"

namespace zqv::interface_test {

// While an instance exists, standard error goes to it only.
class LogCapture {
 public:
  // The lines written so far, without line ends. An incomplete last line gets three dots.
  std::vector<std::string> Lines() const;

 private:
  const test::ErrorCapture errors_;
};

}  // namespace zqv::interface_test
