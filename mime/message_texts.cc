#include "mime/message_texts.h"

#include <algorithm>
#include <cstring>

namespace zqv::mime {

std::string_view MessageTexts::Keep(std::string_view text) {
  constexpr std::size_t kRoom = 1000;  // for some texts; allocators are quickest below a KB
  if (text.empty()) return "";
  if (text.size() > left_) {
    const std::size_t room = std::max(text.size(), kRoom);
    kept_.emplace_back(new char[room]);
    size_ = left_ = room;
  }
  char* const copy = kept_.back().get() + (size_ - left_);
  std::memcpy(copy, text.data(), text.size());
  left_ -= text.size();
  return {copy, text.size()};
}

}  // namespace zqv::mime
