#include "tests/support/failing_memory.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace zqv::test {
namespace {

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
std::size_t g_largest = kNoLimit;

bool IsRefused(std::size_t size) { return size > g_largest; }

}  // namespace

AllocationLimit::AllocationLimit(std::size_t largest) { g_largest = largest; }
AllocationLimit::~AllocationLimit() { g_largest = kNoLimit; }

}  // namespace zqv::test

void* operator new(std::size_t size) {
  void* memory = zqv::test::IsRefused(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// The linker option --wrap=calloc makes calls of calloc go to __wrap_calloc.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return zqv::test::IsRefused(count * size) ? nullptr : __real_calloc(count, size);
}
