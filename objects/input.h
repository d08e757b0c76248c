// A message's bytes from a string, a memory block or a file of the host.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "base/heap.h"
#include "host/ref.h"

namespace zqv::objects {

// The bytes of a message: borrowed from their owner, or held in memory whole.
class MessageBytes {
 public:
  MessageBytes(std::string_view borrowed) : bytes_(borrowed) {}  // NOLINT: a view is enough
  MessageBytes(base::HeapArray<char>&& memory, std::size_t length)
      : memory_(std::move(memory)), bytes_(memory_.get(), length) {}

  std::string_view bytes() const { return bytes_; }

  // Gives the memory back; empty afterwards.
  void Free() {
    bytes_ = {};
    memory_.reset();
  }

 private:
  base::HeapArray<char> memory_;  // null when borrowed
  std::string_view bytes_;
};

// The bytes of a MemoryBlock [borrowed], which may be nil: an empty one.
class BlockBytes {
 public:
  explicit BlockBytes(abi::REALobject block);

  // Borrowed: as long as this lives and the block is not resized.
  std::string_view bytes() const { return bytes_; }

 private:
  host::ObjectRef hold_;
  std::string_view bytes_;
};

// The bytes of a FolderItem's file [borrowed; nil is no file]. Nothing, with an exception raised,
// when it cannot be opened or read (IOException) or is too large for memory (OutOfMemoryException).
std::optional<MessageBytes> ReadFile(abi::REALobject file);

}  // namespace zqv::objects
