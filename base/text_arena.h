// Copies of short texts that live as long as the arena, in a few large allocations.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace zqv::base {

class TextArena {
 public:
  // A copy of `text`; it stays valid when the arena is moved.
  std::string_view Keep(std::string_view text) {
    if (text.empty()) return "";
    if (text.size() > unused_) AddBlock(text.size());
    char* const copy = blocks_.back().get() + (block_size_ - unused_);
    std::memcpy(copy, text.data(), text.size());
    unused_ -= text.size();
    return {copy, text.size()};
  }

 private:
  void AddBlock(std::size_t least) {
    constexpr std::size_t kBlock = 1000;  // bytes; allocators are fastest below a KB
    const std::size_t size = std::max(least, kBlock);
    blocks_.emplace_back(new char[size]);
    block_size_ = unused_ = size;
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t block_size_ = 0;  // of the last block
  std::size_t unused_ = 0;      // bytes at the end of the last block
};

}  // namespace zqv::base
