#include "cli/line_numbers.h"

#include <algorithm>

namespace zqv::cli {

LineNumbers::LineNumbers(std::string_view text) : text_(text), starts_({0}) {
  ForEachLine(text, [&](std::string_view, std::string_view line_end) {
    if (line_end.empty()) return;
    const char* const next = line_end.data() + line_end.size();
    starts_.push_back(static_cast<std::uint32_t>(next - text.data()));
  });
}

std::size_t LineNumbers::At(const char* at) const {
  const auto offset = static_cast<std::size_t>(at - text_.data());
  const auto after = std::upper_bound(starts_.begin(), starts_.end(), offset);
  return static_cast<std::size_t>(after - starts_.begin());
}

std::string_view LineNumbers::RestOfLine(const char* at) const {
  const std::string_view rest = text_.substr(static_cast<std::size_t>(at - text_.data()));
  return rest.substr(0, rest.find_first_of("\r\n"));
}

}  // namespace zqv::cli
