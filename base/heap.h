// Zeroed memory from the C heap, for buffers whose allocation may fail without an exception.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace zqv::base {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

template <class Unit>
using HeapArray = std::unique_ptr<Unit[], FreeMemory>;

// `count` units, all zero. Null when there is no memory for them.
template <class Unit>
HeapArray<Unit> AllocateZeroed(std::size_t count) {
  return HeapArray<Unit>(static_cast<Unit*>(std::calloc(count, sizeof(Unit))));
}

}  // namespace zqv::base
