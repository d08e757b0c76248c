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

namespace {
OutOfMemoryHandler g_out_of_memory = nullptr;
}  // namespace

void SetOutOfMemoryHandler(OutOfMemoryHandler handler) { g_out_of_memory = handler; }

void OutOfMemory(const std::string& creator) {
  if (g_out_of_memory != nullptr) g_out_of_memory(creator);
  Fatal(creator + ": out of memory");
}

}  // namespace zqv::standin
