#include "tests/support/system_log_lines.h"

#include <algorithm>
#include <cstddef>

#include "base/ascii.h"

namespace zqv::test {
namespace {

bool IsHexadecimalDigit(char c) { return base::HexadecimalValue(c) >= 0; }

// Takes characters of one kind from the front; gives whether there was one.
template <typename Kind>
bool Take(std::string_view* rest, Kind is_of_kind) {
  const auto end = std::find_if_not(rest->begin(), rest->end(), is_of_kind);
  const auto length = static_cast<std::size_t>(end - rest->begin());
  rest->remove_prefix(length);
  return length > 0;
}

bool Take(std::string_view* rest, char wanted) {
  if (rest->empty() || rest->front() != wanted) return false;
  rest->remove_prefix(1);
  return true;
}

// Takes numbers, each with the next of `marks` behind it: "--" takes "2024-05-".
bool TakeNumbers(std::string_view* rest, std::string_view marks) {
  return std::all_of(marks.begin(), marks.end(),
                     [rest](char mark) { return Take(rest, &base::IsDigit) && Take(rest, mark); });
}

bool TakeTime(std::string_view* rest) {
  if (!TakeNumbers(rest, "-- ::.") || !Take(rest, &base::IsDigit)) return false;
  if (Take(rest, '+') || Take(rest, '-')) Take(rest, &base::IsDigit);
  return Take(rest, ' ');
}

std::string_view WithoutPrefix(std::string_view line) {
  std::string_view rest = line;
  if (!TakeTime(&rest)) return line;
  const std::size_t ids = rest.find('[');
  if (ids == std::string_view::npos) return line;
  rest.remove_prefix(ids + 1);
  const bool is_prefix = TakeNumbers(&rest, ":") && Take(&rest, &IsHexadecimalDigit) &&
                         Take(&rest, ']') && Take(&rest, ' ');
  return is_prefix ? rest : line;
}

}  // namespace

std::string WithoutSystemLogPrefixes(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    result += WithoutPrefix(text.substr(0, end));
    text.remove_prefix(end);
  }
  return result;
}

}  // namespace zqv::test
