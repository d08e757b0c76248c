// This program's operators new and delete in the place of those of macOS's C++ library: as a
// process has them that replaces them, and as the tests of failing allocations want them.
#pragma once

#include <string>

namespace zqv::macho {

// The operator of a symbol's name; null for any other.
void* FindOperator(const std::string& name);

// What throws std::bad_alloc in that C++ library: an exception of this system's cannot pass through
// functions of a library for macOS. To be told before anything is allocated.
void ThrowBadAllocBy(void* function);

}  // namespace zqv::macho
