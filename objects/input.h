// Reads the bytes of a message from a MemoryBlock or a file of the host.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "base/heap.h"
#include "host/ref.h"

namespace zqv::objects {

// The bytes of a message, borrowed from their owner or owned.
class MessageBytes {
 public:
  MessageBytes(std::string_view borrowed) : bytes_(borrowed) {}  // NOLINT: conversion is intended
  MessageBytes(base::HeapArray<char>&& memory, std::size_t length)
      : memory_(std::move(memory)), bytes_(memory_.get(), length) {}

  std::string_view bytes() const { return bytes_; }

  // Frees the memory, if it is owned; bytes() is empty afterwards.
  void Free() {
    bytes_ = {};
    memory_.reset();
  }

 private:
  base::HeapArray<char> memory_;  // null when borrowed
  std::string_view bytes_;
};

// Gives access to the bytes of a MemoryBlock, and keeps it alive as long as this object exists.
class BlockBytes {
 public:
  // `block` may be nil: it is empty. [borrowed; a lock is added]
  explicit BlockBytes(abi::REALobject block);

  // The bytes of the block. [borrowed: valid as long as this object exists and the block is not
  // resized]
  std::string_view bytes() const { return bytes_; }

 private:
  host::ObjectRef hold_;
  std::string_view bytes_;
};

// Reads the file of a FolderItem [borrowed; may be nil] into memory. On failure returns nullopt and
// raises an IOException when the file cannot be opened or read, or an OutOfMemoryException.
std::optional<MessageBytes> ReadFile(abi::REALobject file);

}  // namespace zqv::objects
