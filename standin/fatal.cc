#include "standin/fatal.h"

#include <cstdio>
#include <cstdlib>

namespace zqv::standin {

void Fatal(const std::string& message) {
  static_cast<void>(std::fflush(stdout));
  static_cast<void>(std::fprintf(stderr, "stand-in host: %s\n", message.c_str()));
  static_cast<void>(std::fflush(stderr));
  std::abort();
}

}  // namespace zqv::standin
