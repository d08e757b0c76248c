// A message's bytes from a memory block or a file of the host.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "host/heap.h"
#include "host/ref.h"

namespace zqv::email {

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

// A file's bytes, held in memory whole.
class FileContent {
 public:
  FileContent(host::HeapArray<char>&& memory, std::size_t length)
      : memory_(std::move(memory)), length_(length) {}

  std::string_view bytes() const { return {memory_.get(), length_}; }

 private:
  host::HeapArray<char> memory_;
  std::size_t length_;
};

// The bytes of a FolderItem's file [borrowed; nil is no file]. Nothing, with an exception raised,
// when it cannot be opened or read (IOException) or is too large for memory (OutOfMemoryException).
std::optional<FileContent> ReadFile(abi::REALobject file);

}  // namespace zqv::email
