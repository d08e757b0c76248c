#include "cli/css_tokens.h"

#include <algorithm>

#include "base/ascii.h"
#include "cli/utf8.h"

namespace zqv::cli {
namespace {

using base::HexadecimalValue;
using base::IsDigit;
using base::IsLetter;

constexpr std::string_view kBlanks = " \t\n\r\f";
constexpr std::string_view kLineEnds = "\n\r\f";

bool IsOf(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }
bool IsNameStart(char c) {
  return IsLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool IsNameCharacter(char c) { return IsNameStart(c) || IsDigit(c) || c == '-'; }

void AppendEscaped(char c, std::string* text) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  *text += '\\';
  *text += kDigits[byte >> 4U];
  *text += kDigits[byte & 15U];
  *text += ' ';  // the blank ends the escape
}

// Writes a decoded name with the escapes that it needs. `is_ident`: it must not look like a number
// at its start.
std::string NameText(std::string_view name, bool is_ident) {
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool is_at_front = i == 0 || (i == 1 && name[0] == '-');
    const bool is_misread =
        is_ident && ((is_at_front && IsDigit(name[i])) || (name == "-" && i == 0));
    if (!IsNameCharacter(name[i]) || is_misread) {
      AppendEscaped(name[i], &text);
    } else {
      text += name[i];
    }
  }
  return text;
}

std::string StringText(std::string_view value) {
  std::string text = "\"";
  for (const char c : value) {
    if (static_cast<unsigned char>(c) < ' ' || IsOf("\"\\<>&\x7F", c)) {
      AppendEscaped(c, &text);
    } else {
      text += c;
    }
  }
  return text += '"';
}

}  // namespace

std::string_view CssReader::Take(std::size_t size) {
  const std::string_view taken = rest_.substr(0, size);
  rest_.remove_prefix(taken.size());
  return taken;
}

void CssReader::SkipSpaces() { Take(rest_.find_first_not_of(kBlanks)); }

bool CssReader::IsEscapeAt(std::size_t index) const {
  return At(index) == '\\' && !IsOf(kLineEnds, At(index + 1));
}

bool CssReader::IsNameStartAt(std::size_t index) const {
  if (At(index) != '-') return IsNameStart(At(index)) || IsEscapeAt(index);
  return At(index + 1) == '-' || IsNameStart(At(index + 1)) || IsEscapeAt(index + 1);
}

bool CssReader::IsNumberAt(std::size_t index) const {
  if (At(index) == '+' || At(index) == '-') ++index;
  return IsDigit(At(index)) || (At(index) == '.' && IsDigit(At(index + 1)));
}

CssToken CssReader::Next() {
  if (rest_.empty()) return {};
  const char c = rest_.front();
  if (IsOf(kBlanks, c)) {
    SkipSpaces();
    return {CssKind::kSpace, {}};
  }
  if (c == '/' && At(1) == '*') return ReadComment();
  if (c == '"' || c == '\'') return ReadString();
  if (IsNumberAt(0)) return ReadNumber();
  for (const std::string_view mark : {"<!--", "-->"}) {
    if (rest_.substr(0, mark.size()) != mark) continue;
    Take(mark.size());
    return {CssKind::kComment, {}};
  }
  if (IsNameStartAt(0)) return ReadNameLike();
  if (c == '@' && IsNameStartAt(1)) {
    Take(1);
    return {CssKind::kAt, ReadName()};
  }
  if (c == '#' && (IsNameCharacter(At(1)) || IsEscapeAt(1))) {
    Take(1);
    return {CssKind::kHash, ReadName()};
  }
  Take(1);
  const bool is_broken = c == '\\' || static_cast<unsigned char>(c) < ' ' || c == '\x7F';
  return is_broken ? CssToken{CssKind::kBroken, {}} : CssToken{CssKind::kOther, std::string(1, c)};
}

CssToken CssReader::ReadComment() {
  const std::size_t end = rest_.find("*/", 2);
  Take(end == std::string_view::npos ? end : end + 2);
  return {CssKind::kComment, {}};
}

// Reads an escape. Must be called at a backslash.
void CssReader::ReadEscape(std::string* text) {
  constexpr std::size_t kMostDigits = 6;
  Take(1);
  std::size_t digits = 0;
  char32_t value = 0;
  for (; digits < kMostDigits && HexadecimalValue(At(digits)) >= 0; ++digits) {
    value = value * 16 + static_cast<char32_t>(HexadecimalValue(rest_[digits]));
  }
  if (digits == 0) {
    if (rest_.empty()) return AppendCharacter(0, text);
    *text += Take(FirstCodePoint(rest_).bytes);
    return;
  }
  Take(digits);
  if (rest_.substr(0, 2) == "\r\n") {
    Take(2);
  } else if (IsOf(kBlanks, At(0))) {
    Take(1);
  }
  AppendCharacter(value, text);
}

std::string CssReader::ReadName() {
  std::string name;
  while (!rest_.empty()) {
    if (IsEscapeAt(0)) {
      ReadEscape(&name);
    } else if (IsNameCharacter(rest_.front())) {
      name += Take(1);
    } else {
      break;
    }
  }
  return name;
}

CssToken CssReader::ReadString() {
  const char quote = Take(1).front();
  CssToken token{CssKind::kString, {}};
  while (!rest_.empty()) {
    const char c = rest_.front();
    if (IsOf(kLineEnds, c)) return {CssKind::kBroken, {}};
    if (c == '\\' && IsOf(kLineEnds, At(1)) && rest_.size() > 1) {
      // A backslash before a line end continues the string.
      Take(rest_.substr(1, 2) == "\r\n" ? 3 : 2);
    } else if (c == '\\') {
      ReadEscape(&token.value);
    } else {
      Take(1);
      if (c == quote) break;
      token.value += c;
    }
  }
  return token;
}

CssToken CssReader::ReadNumber() {
  std::size_t end = At(0) == '+' || At(0) == '-' ? 1 : 0;
  const auto skip_digits = [&] {
    while (IsDigit(At(end))) ++end;
  };
  skip_digits();
  if (At(end) == '.' && IsDigit(At(end + 1))) {
    ++end;
    skip_digits();
  }
  if (base::LowerAscii(At(end)) == 'e') {
    const std::size_t sign = At(end + 1) == '+' || At(end + 1) == '-' ? 1 : 0;
    if (IsDigit(At(end + 1 + sign))) {
      end += 1 + sign;
      skip_digits();
    }
  }
  CssToken token{CssKind::kNumber, std::string(Take(end))};
  if (At(0) == '%') {
    token.value += Take(1);
  } else if (IsNameStartAt(0)) {
    const std::string unit = ReadName();
    // Other units could be tokenized as part of the number, such as "e3".
    if (!std::all_of(unit.begin(), unit.end(), IsLetter)) return {CssKind::kBroken, {}};
    token.value += unit;
  }
  return token;
}

CssToken CssReader::ReadNameLike() {
  CssToken token{CssKind::kIdent, ReadName()};
  if (At(0) != '(') return token;
  Take(1);
  token.kind = CssKind::kFunction;
  if (!base::EqualsIgnoringCase(token.value, "url")) return token;
  const std::size_t begin = std::min(rest_.find_first_not_of(kBlanks), rest_.size());
  return At(begin) == '"' || At(begin) == '\'' ? token : ReadUrl();
}

// Reads the rest after "url(".
CssToken CssReader::ReadUrl() {
  SkipSpaces();
  CssToken token{CssKind::kUrl, {}};
  while (!rest_.empty()) {
    const char c = rest_.front();
    if (c == ')') {
      Take(1);
      break;
    }
    if (IsOf(kBlanks, c)) {
      SkipSpaces();
      if (!rest_.empty() && rest_.front() != ')') return ReadBrokenUrl();
    } else if (IsEscapeAt(0)) {
      ReadEscape(&token.value);
    } else if (IsOf("\"'(\\", c) || static_cast<unsigned char>(c) < ' ' || c == '\x7F') {
      return ReadBrokenUrl();
    } else {
      token.value += Take(1);
    }
  }
  return token;
}

CssToken CssReader::ReadBrokenUrl() {
  std::string ignored;
  while (!rest_.empty()) {
    if (IsEscapeAt(0)) {
      ReadEscape(&ignored);
    } else if (Take(1) == ")") {
      break;
    }
  }
  return {CssKind::kBroken, {}};
}

std::string CssText(const CssToken& token) {
  switch (token.kind) {
    case CssKind::kEnd:
      return {};
    case CssKind::kSpace:
      return " ";
    case CssKind::kIdent:
      return NameText(token.value, true);
    case CssKind::kFunction:
      return NameText(token.value, true) + '(';
    case CssKind::kAt:
      return '@' + NameText(token.value, true);
    case CssKind::kHash:
      return '#' + NameText(token.value, false);
    case CssKind::kString:
      return StringText(token.value);
    case CssKind::kUrl:
      return "url(" + StringText(token.value) + ')';
    case CssKind::kNumber:
      return token.value;
    case CssKind::kOther:
      if (!token.Is('<')) return token.value;
      break;
    case CssKind::kComment:
    case CssKind::kBroken:
      break;
  }
  // A comment separates the tokens on both sides. White space would be a combinator.
  return "/**/";
}

}  // namespace zqv::cli
