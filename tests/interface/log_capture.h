// The log of a test as lines.
#pragma once

#include <string>
#include <vector>

#include "tests/support/error_capture.h"

namespace zqv::interface_test {

// While one lives, standard error goes to it alone.
class LogCapture {
 public:
  // What was written so far, without the line ends; a last line without one gets three dots.
  std::vector<std::string> Lines() const;

 private:
  const test::ErrorCapture errors_;
};

}  // namespace zqv::interface_test
