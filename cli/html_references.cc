#include "cli/html_references.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_map>

#include "base/ascii.h"
#include "cli/utf8.h"
#include "text/html_entities.h"

namespace zqv::cli {
namespace {

// Names of ASCII characters that HTML has added to HTML 4.01. Without them a URL could be
// disguised.
constexpr text::HtmlEntity kAsciiNames[] = {
    {'\t', "Tab"},     {'\n', "NewLine"},     {'!', "excl"},   {'"', "QUOT"},   {'#', "num"},
    {'$', "dollar"},   {'%', "percnt"},       {'&', "AMP"},    {'(', "lpar"},   {')', "rpar"},
    {'*', "ast"},      {'*', "midast"},       {'+', "plus"},   {',', "comma"},  {'.', "period"},
    {'/', "sol"},      {':', "colon"},        {';', "semi"},   {'<', "LT"},     {'=', "equals"},
    {'>', "GT"},       {'?', "quest"},        {'@', "commat"}, {'[', "lsqb"},   {'[', "lbrack"},
    {'\\', "bsol"},    {']', "rsqb"},         {']', "rbrack"}, {'^', "Hat"},    {'_', "lowbar"},
    {'_', "UnderBar"}, {'`', "grave"},        {'{', "lcub"},   {'{', "lbrace"}, {'|', "verbar"},
    {'|', "vert"},     {'|', "VerticalLine"}, {'}', "rcub"},   {'}', "rbrace"},
};

// The characters of Windows-1252, which the numbers 128 to 159 stand for (HTML, section 13.2.5.80).
constexpr char32_t kWindows1252[] = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

using Names = std::unordered_map<std::string_view, char32_t>;

const Names& KnownNames() {
  static const Names kNames = [] {
    Names names;
    for (const text::HtmlEntity& entity : text::kHtmlEntities) {
      names.emplace(entity.name, entity.code_point);
    }
    for (const text::HtmlEntity& entity : kAsciiNames)
      names.emplace(entity.name, entity.code_point);
    return names;
  }();
  return kNames;
}

// Whether a name is recognised without a semicolon: the names of Latin-1 characters are, and four
// of ASCII.
bool NeedsNoSemicolon(std::string_view name, char32_t c) {
  if (c >= 0x80) return c <= 0xFF;
  static constexpr std::string_view kOld[] = {"amp", "lt", "gt", "quot", "AMP", "LT", "GT", "QUOT"};
  return std::find(std::begin(kOld), std::end(kOld), name) != std::end(kOld);
}

struct Reference {
  std::size_t bytes = 0;  // length of the reference; 0: there is none
  char32_t value = 0;
};

char32_t Character(char32_t number) {
  constexpr char32_t kFirst = 0x80;
  if (number >= kFirst && number - kFirst < std::size(kWindows1252)) {
    return kWindows1252[number - kFirst];
  }
  return number;
}

// Decodes a numeric reference at the front of a text, which begins with "&#".
Reference NumericAtFront(std::string_view text) {
  const bool is_hexadecimal = text.size() > 2 && base::LowerAscii(text[2]) == 'x';
  const char32_t radix = is_hexadecimal ? 16 : 10;
  constexpr char32_t kEnough = 0x110000;
  const std::size_t begin = is_hexadecimal ? 3 : 2;
  std::size_t at = begin;
  char32_t number = 0;
  for (; at < text.size(); ++at) {
    const int digit = base::HexadecimalValue(text[at]);
    if (digit < 0 || static_cast<char32_t>(digit) >= radix) break;
    number = std::min<char32_t>(number * radix + static_cast<char32_t>(digit), kEnough);
  }
  if (at == begin) return {};
  if (at < text.size() && text[at] == ';') ++at;
  return {at, Character(number)};
}

// Decodes a named reference at the front of a text, which begins with "&".
Reference NamedAtFront(std::string_view text, HtmlPlace place) {
  constexpr std::size_t kLongestName = 16;
  const std::size_t most = std::min(text.size(), kLongestName + 1);
  std::size_t end = 1;
  while (end < most && base::IsAlphanumeric(text[end])) ++end;
  if (end < text.size() && text[end] == ';') {
    const auto found = KnownNames().find(text.substr(1, end - 1));
    if (found != KnownNames().end()) return {end + 1, found->second};
  }
  // Without a semicolon the longest matching name counts.
  for (; end > 1; --end) {
    const std::string_view name = text.substr(1, end - 1);
    const auto found = KnownNames().find(name);
    if (found == KnownNames().end() || !NeedsNoSemicolon(name, found->second)) continue;
    const char next = end < text.size() ? text[end] : '\0';
    if (place == HtmlPlace::kAttribute && (next == '=' || base::IsAlphanumeric(next))) return {};
    return {end, found->second};
  }
  return {};
}

Reference AtFront(std::string_view text, HtmlPlace place) {
  return text.size() > 1 && text[1] == '#' ? NumericAtFront(text) : NamedAtFront(text, place);
}

}  // namespace

std::string WithoutReferences(std::string_view text, HtmlPlace place) {
  std::string decoded;
  decoded.reserve(text.size());
  while (!text.empty()) {
    const Reference reference = text.front() == '&' ? AtFront(text, place) : Reference();
    if (reference.bytes > 0) {
      AppendCharacter(reference.value, &decoded);
      text.remove_prefix(reference.bytes);
    } else {
      decoded += text.front();
      text.remove_prefix(1);
    }
  }
  return decoded;
}

}  // namespace zqv::cli
