// An arena that stores concatenated texts in a few large blocks. The texts live as long as the
// arena.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace zqv::base {

class TextArena {
 public:
  TextArena() = default;
  TextArena(const TextArena&) = delete;
  TextArena& operator=(const TextArena&) = delete;

  // Concatenates two texts. [borrowed from the arena; when `second` is empty, `first` itself]
  //
  // `first` may lie anywhere. When it is the result of the previous call, it is extended in place
  // if the block has room, and otherwise copied to a block of twice the size. So building a text of
  // n bytes piece by piece takes O(n) time and memory.
  std::string_view Join(std::string_view first, std::string_view second) {
    if (second.empty()) return first;
    const bool grows = first.data() == last_ && first.data() + first.size() == end_;
    if (!grows || second.size() > unused_) {
      const std::size_t size = first.size() + second.size();
      if (size > unused_) AddBlock(grows ? 2 * size : size);
      last_ = end_;
      Append(first);
    }
    Append(second);
    return {last_, static_cast<std::size_t>(end_ - last_)};
  }

 private:
  static constexpr std::size_t kBlock = 1000;  // bytes; below 1 KB, where glibc's malloc is fastest

  void Append(std::string_view text) {
    end_ = std::copy(text.begin(), text.end(), end_);
    unused_ -= text.size();
  }

  void AddBlock(std::size_t least) {
    const std::size_t size = std::max(least, kBlock);
    blocks_.emplace_back(new char[size]);
    end_ = blocks_.back().get();
    unused_ = size;
  }

  char first_block_[kBlock];                     // enough for most messages
  std::vector<std::unique_ptr<char[]>> blocks_;  // all later blocks
  char* end_ = first_block_;                     // first unused byte of the current block
  std::size_t unused_ = kBlock;                  // number of unused bytes in the current block
  const char* last_ = nullptr;                   // start of the text that Join returned last
};

}  // namespace zqv::base
