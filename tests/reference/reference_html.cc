#include "tests/reference/reference_html.h"

#include <cstddef>
#include <cstdint>
#include <set>

namespace zqv::reference {
namespace {

constexpr std::uint64_t kLargest = 0xFFFFFFFF;

struct Pass {
  const std::u32string& html;
  const NamedReferences& references;
  std::u32string out;
  std::size_t position = 0;
  char32_t previous = 0;
  int depth = 0;
  int lists = 0;
  bool script = false, style = false, noscript = false, pre = false;
  bool line_start = true;

  char32_t At(std::size_t i) const { return i < html.size() ? html[i] : 0; }
};

bool IsSpace(char32_t c) {
  static const std::set<char32_t> spaces = {9,      10,     11,     12,     13,     32,     0x85,
                                            0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                            0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028,
                                            0x2029, 0x202F, 0x205F, 0x3000};
  return spaces.count(c) == 1;
}

// The letters from position `i` on, in lower case.
std::string NameAt(const Pass& p, std::size_t i) {
  std::string name;
  for (;; ++i) {
    const char32_t c = p.At(i);
    if (c >= U'A' && c <= U'Z') {
      name += static_cast<char>(c + 32);
    } else if (c >= U'a' && c <= U'z') {
      name += static_cast<char>(c);
    } else {
      return name;
    }
  }
}

void Comment(Pass& p) {
  std::size_t i = p.position + 4;
  while (i < p.html.size() && !(p.At(i) == '-' && p.At(i + 1) == '-' && p.At(i + 2) == '>')) ++i;
  if (i >= p.html.size()) {
    p.position = p.html.size();
    return;
  }
  i += 3;
  if (p.At(i) == 13) ++i;
  if (p.At(i) == 10) ++i;
  p.line_start = true;
  p.position = i;
}

void Break(Pass& p) {
  p.out += U'\r';
  p.line_start = true;
}

void Closing(Pass& p, const std::string& name) {
  if (name == "noscript") p.noscript = false;
  if (name == "style") p.style = false;
  if ((name == "ul" || name == "ol") && p.lists >= 1) p.lists -= 1;
  if (name == "pre") {
    Break(p);
    p.pre = false;
  }
  if (name == "div" && !p.line_start) p.out += U' ';
  if (name == "tr" || name == "table" || name == "p") Break(p);
}

void Opening(Pass& p, const std::string& name) {
  if (name == "li") {
    if (!p.line_start) p.out += U'\r';
    for (int level = 2; level <= p.lists; ++level) p.out += U"  ";
    p.out += U"* ";
    p.line_start = false;
  }
  if (name == "style") p.style = true;
  if (name == "script") p.script = true;
  if (name == "noscript") p.noscript = true;
  if (name == "pre") p.pre = true;
  if (name == "ul" || name == "ol") p.lists += 1;
  if (name == "td" && !p.line_start) p.out += U'\t';
  if (name == "table" || name == "br" || name == "p") Break(p);
}

void Tag(Pass& p) {
  p.depth += 1;
  const bool closing = p.At(p.position + 1) == '/';
  const std::size_t name_start = p.position + (closing ? 2 : 1);
  const std::string name = NameAt(p, name_start);
  if (p.script && closing && name == "script") {
    p.script = false;
    p.position = name_start + name.size();
  } else if (p.script) {
    p.depth = 0;
    p.position = closing ? name_start + name.size() + 1 : p.position + 2;
  } else {
    if (closing) {
      Closing(p, name);
    } else {
      Opening(p, name);
    }
    p.position = name_start + name.size();
  }
}

// The digits from position `i` up to the first other character. Only the low `bits` bits of a code
// point are compared.
std::uint64_t Number(const Pass& p, std::size_t i, std::size_t most, char32_t bits, unsigned base) {
  const std::string digits = "0123456789abcdef";
  std::string seen;
  bool minus = false;
  for (std::size_t count = 0; count < most && p.At(i) != 0; ++count, ++i) {
    char32_t c = p.At(i) & bits;
    if (c >= 'A' && c <= 'F') c += 32;
    if (c == '-') {
      minus = true;
      continue;
    }
    const std::size_t digit = c < 128 && c != 0 ? digits.find(static_cast<char>(c)) : base;
    if (digit >= base) break;
    seen += digits[digit];
  }
  if (minus) return 0;
  seen.erase(0, seen.find_first_not_of('0'));
  if (seen.empty()) return 0;
  if (seen.size() > 10) return kLargest;
  const std::uint64_t value = std::stoull(seen, nullptr, static_cast<int>(base));
  return value > kLargest ? kLargest : value;
}

std::u32string Widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

char32_t Named(const Pass& p, const std::u32string& name) {
  for (const auto& [row_name, code_point] : p.references) {
    if (Widen(row_name).substr(0, name.size()) == name) return code_point;
  }
  return 0;
}

bool Reference(Pass& p) {
  std::u32string name;
  for (std::size_t i = p.position + 1; name.size() < 8; ++i) {
    if (p.At(i) == ';' || p.At(i) == 0) break;
    name += p.At(i);
  }
  if (name.empty()) return false;
  const char32_t named = Named(p, name);
  if (named != 0) {
    p.out += named;
  } else if (name[0] == '#') {
    const bool hexadecimal = p.At(p.position + 2) == 'x';
    const std::uint64_t number = hexadecimal ? Number(p, p.position + 3, 8, 0xFFFF, 16)
                                             : Number(p, p.position + 2, p.html.size(), 0xFF, 10);
    if (number == 0) return false;
    p.out += static_cast<char32_t>(number);
  }
  p.position += 1 + name.size() + 1;
  p.line_start = false;
  p.depth = 0;
  return true;
}

void Ordinary(Pass& p, char32_t c) {
  if (!(IsSpace(c) && IsSpace(p.previous))) p.out += c;
  p.line_start = false;
  p.depth = 0;
  p.position += 1;
}

void LineBreak(Pass& p) {
  if (p.depth == 0 && !p.style && !p.script) {
    if (p.pre && !p.noscript) Break(p);
  }
  p.position += 1;
}

void Step(Pass& p) {
  const char32_t c = p.At(p.position);
  if (c == '<' && p.html.compare(p.position, 4, U"<!--") == 0) {
    Comment(p);
  } else if (c == '<') {
    Tag(p);
  } else if (c == 10 || c == 13) {
    LineBreak(p);
  } else if (c == '>') {
    if (p.depth > 0) p.depth -= 1;
    p.position += 1;
  } else if (p.depth > 0 || p.style || p.script || p.noscript) {
    p.position += 1;
  } else if (c != '&' || !Reference(p)) {
    Ordinary(p, c);
  }
  p.previous = c;
}

}  // namespace

std::u32string HtmlToText(const std::u32string& html, const NamedReferences& references) {
  Pass pass{html, references, {}};
  while (pass.position < html.size()) Step(pass);
  return pass.out;
}

}  // namespace zqv::reference
