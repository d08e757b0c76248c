// The text form of a list of addresses or mailboxes, with the text of each entry, which is part of
// it: made once, and used for both.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::mime {

class ListText {
 public:
  // Of a list of the MIME library's: its entries' texts with a separator between them.
  template <class List>
  ListText(const List& list, std::string_view separator) {
    entries_.reserve(list.size());
    for (const auto& entry : list) {
      if (!entries_.empty()) whole_ += separator;
      const std::string text = entry.str();
      entries_.push_back({whole_.size(), text.size()});
      whole_ += text;
    }
  }

  const std::string& whole() const { return whole_; }
  // [borrowed from this]
  std::string_view operator[](std::size_t index) const {
    return std::string_view(whole_).substr(entries_[index].start, entries_[index].size);
  }

 private:
  struct Entry {
    std::size_t start;
    std::size_t size;
  };

  std::string whole_;
  std::vector<Entry> entries_;
};

// Between the entries of a header's list.
inline constexpr std::string_view kListSeparator = ", ";

}  // namespace zqv::mime
