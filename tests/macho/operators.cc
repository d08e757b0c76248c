#include "tests/macho/operators.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "tests/macho/symbols.h"

namespace zqv::macho {
namespace {

using Thrower = void* (*)();
Thrower g_throw = nullptr;

// Precedes each block that these operators allocate. A block of another operator is recognised by
// its missing mark; and another operator cannot free these blocks, because it does not know their
// addresses.
struct Mark {
  std::uint64_t value;
  std::uint64_t filler;
};
constexpr std::uint64_t kMark = 0x6D61726B6F666F70;

void* WithMark(void* memory) {
  if (memory == nullptr) return nullptr;
  auto* const mark = static_cast<Mark*>(memory);
  mark->value = kMark;
  return mark + 1;
}

void* NewOrNull(std::size_t size, const void*) {
  return WithMark(::operator new(size + sizeof(Mark), std::nothrow));
}
void* NewArrayOrNull(std::size_t size, const void*) {
  return WithMark(::operator new[](size + sizeof(Mark), std::nothrow));
}

Mark* MarkOf(void* memory) {
  Mark* const mark = static_cast<Mark*>(memory) - 1;
  if (mark->value != kMark) {
    std::fputs("a block is freed by another operator than made it\n", stderr);
    std::abort();
  }
  mark->value = 0;
  return mark;
}
void Delete(void* memory) {
  if (memory != nullptr) ::operator delete(MarkOf(memory));
}
void DeleteArray(void* memory) {
  if (memory != nullptr) ::operator delete[](MarkOf(memory));
}

// The throwing function is the last call, so that the compiler replaces it by a jump. Exception
// handling then finds the caller of operator new, for which it has tables, instead of this
// function.
[[gnu::optimize("O2", "no-stack-protector")]] void* New(std::size_t size) {
  void* const memory = NewOrNull(size, nullptr);
  if (memory != nullptr) return memory;
  return g_throw();
}
[[gnu::optimize("O2", "no-stack-protector")]] void* NewArray(std::size_t size) {
  void* const memory = NewArrayOrNull(size, nullptr);
  if (memory != nullptr) return memory;
  return g_throw();
}

// The operators with a size free blocks like the others and ignore the size.
const Symbol kRows[] = {
    {"__Znwm", At(&New)},
    {"__Znam", At(&NewArray)},
    {"__ZnwmRKSt9nothrow_t", At(&NewOrNull)},
    {"__ZnamRKSt9nothrow_t", At(&NewArrayOrNull)},
    {"__ZdlPv", At(&Delete)},
    {"__ZdlPvm", At(&Delete)},
    {"__ZdlPvRKSt9nothrow_t", At(&Delete)},
    {"__ZdaPv", At(&DeleteArray)},
    {"__ZdaPvm", At(&DeleteArray)},
    {"__ZdaPvRKSt9nothrow_t", At(&DeleteArray)},
};

}  // namespace

void* FindOperator(const std::string& name) { return FindSymbol(kRows, name); }

void ThrowBadAllocBy(void* function) { g_throw = reinterpret_cast<Thrower>(function); }

}  // namespace zqv::macho
