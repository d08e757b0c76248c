// zqv-bench for bench/own_work. Run it under callgrind with --collect-atstart=no. Counted are
// instructions inside the plug-in, with the code of the C and C++ libraries that it calls, but
// without the host's entry points. The last line of output is the number of the plug-in's calls of
// operator new.
#include <valgrind/callgrind.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "bench/construction.h"
#include "standin/invoke.h"

namespace {

std::uint64_t g_allocations = 0;

void* Allocate(std::size_t size) {
  if (zqv::standin::InPlugin()) ++g_allocations;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

int main(int argc, char** argv) {
  zqv::standin::ObserveSides([](bool) { CALLGRIND_TOGGLE_COLLECT; });
  const int code = zqv::bench::ThroughputMain(
      argc, argv, "own-work", "Counts what the library itself does, under callgrind",
      zqv::bench::PrepareConstruction);
  std::printf("allocations\t%llu\n", static_cast<unsigned long long>(g_allocations));
  return code;
}
