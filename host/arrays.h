// Host object arrays: how lists are made, filled, counted and read.
//
// Every list is made empty and filled by appending. An element is read straight from the host's
// own storage once a self-test, run at most once in the process, has proven the memory layout;
// otherwise through the host. The layouts are data, in arrays.cc.
#pragma once

#include <cstdint>

#include "host/ref.h"

namespace zqv::host {

// A new empty object array [new lock]; nil when the host cannot make one.
ArrayRef NewObjectArray();

// Appends `object` [borrowed: the array adds its own count]. Dropped when the host cannot insert.
void AppendObject(abi::REALarray array, abi::REALobject object);

// Appends to an array [borrowed] that is new and empty and that nobody else fills meanwhile: the
// same as AppendObject, but the host is not asked again for what is known.
class NewListFiller {
 public:
  explicit NewListFiller(abi::REALarray array) : array_(array) {}

  void Append(abi::REALobject object);

 private:
  abi::REALarray array_;
  abi::ObjectArrayInsertProc insert_ = nullptr;
  std::int64_t count_ = 0;
};

// The number of elements: 0 for a nil array, 1 when the host cannot tell the upper bound.
std::int64_t ArrayCount(abi::REALarray array);

// The element at `index` [new lock]. Raises an OutOfBoundsException and gives nil for an index
// outside the array; nil without an exception for a nil array.
ObjectRef REALGetArrayObject(abi::REALarray array, std::int64_t index);

}  // namespace zqv::host
