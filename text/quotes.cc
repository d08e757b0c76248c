// Removes one pair of quotes, or apostrophes inside double quotes:
//
//   "Smith, John"    Smith, John
//   "'John'"         John
//   '"John"'         "John"
#include "text/quotes.h"

#include <algorithm>
#include <cstddef>

namespace zqv::text {
namespace {

constexpr std::size_t kShortestQuoted = 3;

// Whether `text` begins and ends with `quote` and has something in between.
bool IsWrapped(std::string_view text, char quote) {
  return text.size() >= kShortestQuoted && text.front() == quote && text.back() == quote;
}

// `text` without its first and last byte.
std::string_view Inner(std::string_view text) { return text.substr(1, text.size() - 2); }

}  // namespace

std::string_view RemoveQuotes(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (IsWrapped(text, '"')) {
    const std::string_view inner = Inner(text);
    return IsWrapped(inner, '\'') ? Inner(inner) : inner;
  }
  return IsWrapped(text, '\'') ? Inner(text) : text;
}

}  // namespace zqv::text
