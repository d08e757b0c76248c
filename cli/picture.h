// Pictures that a page can show, as data URIs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

// "image/png" and such, by the first bytes, whatever a message says; empty for what is no picture
// of PNG, JPEG, GIF, WebP or BMP.
std::string_view PictureType(std::string_view bytes);

// Makes data URIs until they are too many: a message may show one picture thousands of times.
class Pictures {
 public:
  // Empty for what is no picture, for a large one, and when enough were given. `copies`: how often
  // the page holds what this gives.
  std::string DataUri(std::string_view bytes, std::size_t copies = 1);

 private:
  static constexpr std::size_t kMostBytes = 8U << 20U;  // of one picture
  static constexpr std::size_t kMostInAll = 48U << 20U;

  std::size_t left_ = kMostInAll;
};

}  // namespace zqv::cli
