// Zeroed buffers from the C heap. A failed allocation returns null instead of throwing.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace zqv::base {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

// Owns an array from AllocateZeroed, or null.
template <class Unit>
using HeapArray = std::unique_ptr<Unit[], FreeMemory>;

// Allocates `count` elements of type Unit, all zero. Returns null when memory runs out.
template <class Unit>
HeapArray<Unit> AllocateZeroed(std::size_t count) {
  return HeapArray<Unit>(static_cast<Unit*>(std::calloc(count, sizeof(Unit))));
}

}  // namespace zqv::base
