// Line numbers of the bytes of a text. CR, LF, CRLF and LFCR each end one line, as for the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "mime/line_ends.h"

namespace zqv::cli {

inline constexpr std::size_t kNoLine = 0;

// Calls `use(line, line_end)` for each line. `line_end` of the last line may be empty. There is no
// line after a line end at the end of the text.
template <class Use>
void ForEachLine(std::string_view text, Use use) {
  const char* const end = text.data() + text.size();
  while (!text.empty()) {
    const char* const line_end = mime::FindLineEnd(text.data(), end);
    const auto length = static_cast<std::size_t>(line_end - text.data());
    const char* const next = line_end == end ? end : mime::SkipLineEnd(line_end, end);
    use(text.substr(0, length), text.substr(length, static_cast<std::size_t>(next - line_end)));
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
  }
}

class LineNumbers {
 public:
  // `text` must outlive this object. It may have at most 4 GB.
  explicit LineNumbers(std::string_view text);

  // The number of the line that contains `at`, from 1. `at` points into the text or to its end.
  std::size_t At(const char* at) const;
  // The text from `at` to the end of its line, without the line end.
  std::string_view RestOfLine(const char* at) const;

 private:
  std::string_view text_;
  std::vector<std::uint32_t> starts_;  // offset of each line
};

}  // namespace zqv::cli
