// Replaces the operators new and delete of macOS's C++ library by this program's, as a process is
// allowed to. The tests of failing allocations need this.
#pragma once

#include <string>

namespace zqv::macho {

// The replacement of a symbol; null for any other symbol.
void* FindOperator(const std::string& name);

// Sets the function that throws std::bad_alloc. It is in macOS's C++ library, because an exception
// of this system's cannot pass through functions of a library for macOS. Call it before anything is
// allocated.
void ThrowBadAllocBy(void* function);

}  // namespace zqv::macho
