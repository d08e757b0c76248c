// A thread-local pointer whose access allocates nothing, so that it cannot fail for lack of memory.
#pragma once

namespace zqv::base {

// The pointer that the calling thread stored last. Null when it has stored none, and always null
// when the system had no thread-local slot left for this library.
void* GetThreadSlot() noexcept;

// Stores a pointer for the calling thread; the pointed-to object is borrowed. Does nothing when the
// system had no slot left.
void SetThreadSlot(void* value) noexcept;

}  // namespace zqv::base
