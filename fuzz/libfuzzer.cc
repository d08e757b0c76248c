// Runs the target on inputs that libFuzzer makes.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/target.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  zqv::fuzz::target.start();
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A copy of exactly this size, so that a sanitizer finds a read beyond it.
  const std::string input(data, data + size);
  zqv::fuzz::RunBoth(input);
  return 0;
}
