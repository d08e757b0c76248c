#include "tests/macho/operators.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace zqv::macho {
namespace {

using Thrower = void* (*)();
Thrower g_throw = nullptr;

// The throwing function is jumped to and not called, so that exception handling finds the caller
// of operator new, whose tables it knows, where this function's frame would have been.
[[gnu::optimize("O2", "no-stack-protector")]] void* New(std::size_t size) {
  void* const memory = ::operator new(size, std::nothrow);
  if (memory != nullptr) return memory;
  return g_throw();
}
[[gnu::optimize("O2", "no-stack-protector")]] void* NewArray(std::size_t size) {
  void* const memory = ::operator new[](size, std::nothrow);
  if (memory != nullptr) return memory;
  return g_throw();
}
void* NewOrNull(std::size_t size, const void*) { return ::operator new(size, std::nothrow); }
void* NewArrayOrNull(std::size_t size, const void*) { return ::operator new[](size, std::nothrow); }
void Delete(void* memory) { ::operator delete(memory); }
void DeleteArray(void* memory) { ::operator delete[](memory); }

struct Row {
  const char* name;
  void* address;
};

template <class Function>
void* At(Function* function) {
  return reinterpret_cast<void*>(function);
}

// Those of a size free as the plain ones do, and pay no heed to it.
const Row kRows[] = {
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

void* FindOperator(const std::string& name) {
  for (const Row& row : kRows) {
    if (name == row.name) return row.address;
  }
  return nullptr;
}

void ThrowBadAllocBy(void* function) { g_throw = reinterpret_cast<Thrower>(function); }

}  // namespace zqv::macho
