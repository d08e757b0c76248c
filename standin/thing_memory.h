// Allocator of things for a host without a ledger. It keeps freed small blocks for reuse, as the
// allocators of hosts do. With a ledger it is not used: freed memory goes to the quarantine.
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "standin/poison.h"

namespace zqv::standin {

// Not thread-safe.
class ThingMemory {
 public:
  ThingMemory() = default;
  ThingMemory(const ThingMemory&) = delete;
  ThingMemory& operator=(const ThingMemory&) = delete;

  // Allocates memory; null when there is none. Small blocks are freed when this object is
  // destroyed, also those that are in use.
  void* Take(std::size_t size) {
    if (!IsSmall(size)) return std::malloc(size);
    Piece*& free_pieces = free_[ClassOf(size)];
    if (free_pieces == nullptr) return Cut((ClassOf(size) + 1) * kStep);
    Piece* const piece = free_pieces;
    free_pieces = piece->next;
    return piece;
  }

  // Frees a block. `size` is the size that was passed to Take.
  void GiveBack(void* memory, std::size_t size) {
    if (!IsSmall(size)) return std::free(memory);
    Piece*& free_pieces = free_[ClassOf(size)];
    free_pieces = new (memory) Piece{free_pieces};
  }

 private:
  struct Piece {
    Piece* next;
  };

  static constexpr std::size_t kStep = 16;
  static constexpr std::size_t kLargest = 512;
  static constexpr std::size_t kChunk = std::size_t{64} * 1024;

  // With AddressSanitizer all memory comes from malloc, since the sanitizer cannot see blocks
  // inside a chunk.
  static bool IsSmall(std::size_t size) { return !kPoisonWorks && size <= kLargest; }
  static std::size_t ClassOf(std::size_t size) { return size == 0 ? 0 : (size - 1) / kStep; }

  void* Cut(std::size_t size) {
    if (unused_ < size) {
      chunks_.emplace_back(new (std::nothrow) char[kChunk]);
      if (chunks_.back() == nullptr) return nullptr;
      unused_ = kChunk;
    }
    char* const piece = chunks_.back().get() + (kChunk - unused_);
    unused_ -= size;
    return piece;
  }

  std::array<Piece*, kLargest / kStep> free_{};  // freed blocks, by size class
  std::vector<std::unique_ptr<char[]>> chunks_;
  std::size_t unused_ = 0;  // bytes at the end of the last chunk
};

}  // namespace zqv::standin
