#include "tests/interface/log_capture.h"

#include <cstddef>

namespace zqv::interface_test {

std::vector<std::string> LogCapture::Lines() const {
  const std::string text = errors_.Text();
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  if (start < text.size()) lines.push_back(text.substr(start) + "...");
  return lines;
}

}  // namespace zqv::interface_test
