// Pictures as data URIs, for a page of HTML.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

// Returns the MIME type of a picture, such as "image/png", by its first bytes, whatever type the
// message gives it. Empty when it is not PNG, JPEG, GIF, WebP or BMP.
std::string_view PictureType(std::string_view bytes);

// Makes data URIs up to a total size, because a message may show one picture thousands of times.
class Pictures {
 public:
  // Returns the data URI of a picture that the page contains `copies` times. Empty when the bytes
  // are not a picture, are too large, or exceed the total.
  std::string DataUri(std::string_view bytes, std::size_t copies = 1);

 private:
  static constexpr std::size_t kMostBytes = 8U << 20U;  // of one picture
  static constexpr std::size_t kMostInAll = 48U << 20U;

  std::size_t left_ = kMostInAll;
};

}  // namespace zqv::cli
