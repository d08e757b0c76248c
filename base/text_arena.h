// Texts made of pieces, which live as long as the arena, in a few large allocations.
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

  // Both texts as one. When `first` was joined here last, it grows where it lies while there is
  // room: joining piece after piece takes time and memory in proportion to the whole.
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
  static constexpr std::size_t kBlock = 1000;  // bytes; allocators are fastest below a KB

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

  char first_block_[kBlock];                     // most messages need no other
  std::vector<std::unique_ptr<char[]>> blocks_;  // the others
  char* end_ = first_block_;                     // of the texts in the last block
  std::size_t unused_ = kBlock;                  // bytes behind them
  const char* last_ = nullptr;                   // where the text begins that was joined last
};

}  // namespace zqv::base
