// Arrays of host objects: creating, appending, counting and reading elements.
//
// An element is read directly from the array's memory if a self-test has confirmed the memory
// layout that is expected of the host's version, and otherwise through the host. The self-test runs
// when the first element is read in the process.
#pragma once

#include <cstdint>

#include "host/ref.h"

namespace zqv::host {

// Creates an empty array of objects [new lock]; nil when the host cannot make one.
ArrayRef NewObjectArray();

// Appends `object` [borrowed: the array adds a lock of its own] to `array` [borrowed]. Does nothing
// when the host cannot insert.
void AppendObject(abi::REALarray array, abi::REALobject object);

// Appends objects to a new array [borrowed], faster than AppendObject: it asks the host for the
// insert procedure once, and counts the elements itself. The array must be empty at first, and
// nothing else may append to it meanwhile.
class NewListFiller {
 public:
  explicit NewListFiller(abi::REALarray array) : array_(array) {}

  void Append(abi::REALobject object);

 private:
  abi::REALarray array_;
  abi::ObjectArrayInsertProc insert_ = nullptr;
  std::int64_t count_ = 0;
};

// The number of elements of `array` [borrowed]; 0 for nil, and 1 when the host lacks the entry
// point that tells the upper bound.
std::int64_t ArrayCount(abi::REALarray array);

// The element at `index`, counted from 0 [new lock]. Outside the array: nil, and raises an
// OutOfBoundsException. Nil, without an exception, for a nil array.
ObjectRef REALGetArrayObject(abi::REALarray array, std::int64_t index);

}  // namespace zqv::host
