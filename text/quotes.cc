#include "text/quotes.h"

#include <exception>
#include <string_view>
#include <typeinfo>

#include "base/log.h"

namespace zqv::text {
namespace {

constexpr std::size_t kShortestQuoted = 3;

bool IsWrapped(std::string_view text, char quote) {
  return text.size() >= kShortestQuoted && text.front() == quote && text.back() == quote;
}

std::string_view Inner(std::string_view text) { return text.substr(1, text.size() - 2); }

}  // namespace

std::string RemoveQuotes(std::string text) {
  try {
    text.erase(0, text.find_first_not_of(' '));
    std::string_view rest = text;
    if (IsWrapped(rest, '"')) {
      rest = Inner(rest);
      if (IsWrapped(rest, '\'')) rest = Inner(rest);
    } else if (IsWrapped(rest, '\'')) {
      rest = Inner(rest);
    }
    if (rest.size() != text.size()) text = std::string(rest);
  } catch (const std::exception& e) {
    ZQV_LOG("%s%s %s, %s", "C++ Exception: ", typeid(e).name(), e.what());
  }
  return text;
}

}  // namespace zqv::text
