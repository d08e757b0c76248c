#include "cli/mail_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>

#include "base/ascii.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

// Decodes a percent escape such as "%41" at the front of a text. Nothing when there is none.
std::optional<char> ByteOfEscape(std::string_view text) {
  if (text.size() < 3 || text[0] != '%') return std::nullopt;
  const int high = base::HexadecimalValue(text[1]);
  const int low = base::HexadecimalValue(text[2]);
  if (high < 0 || low < 0) return std::nullopt;
  return static_cast<char>(high * 16 + low);
}

// Removes quotes if they are at both ends.
std::string_view WithoutQuotes(std::string_view text) {
  const bool is_quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return is_quoted ? text.substr(1, text.size() - 2) : text;
}

// Removes the text up to and including `end` from the front of `text`, and returns it without
// `end`.
std::string_view TakeUpTo(char end, std::string_view* text) {
  const std::string_view piece = text->substr(0, text->find(end));
  text->remove_prefix(std::min(piece.size() + 1, text->size()));
  return piece;
}

// Whether a character may be in the charset name of an encoded word.
bool IsTokenCharacter(char c) {
  return c > ' ' && c < '\x7F' && std::string_view("()<>@,;:\"/[]?.=").find(c) == kNowhere;
}
// Blanks are not allowed in encoded words, but they are frequent and the library accepts them.
bool IsEncodedText(char c) { return c >= ' ' && c < '\x7F' && c != '?'; }

// Parses the encoded word at the front of a text, which begins with "=?".
std::optional<EncodedWord> WordAtFront(std::string_view text) {
  const auto charset_begin = text.begin() + 2;
  const auto charset_end = std::find_if_not(charset_begin, text.end(), IsTokenCharacter);
  const auto at = static_cast<std::size_t>(charset_end - text.begin());
  const std::string_view rest = text.substr(at);  // "?Q?Caf=C3=A9?="
  constexpr std::size_t kBeforeText = 3;
  if (charset_end == charset_begin || rest.size() < kBeforeText || rest[0] != '?' || rest[2] != '?')
    return std::nullopt;
  if (std::string_view("BbQq").find(rest[1]) == kNowhere) return std::nullopt;
  const auto end = std::find_if_not(rest.begin() + kBeforeText, rest.end(), IsEncodedText);
  const auto length = static_cast<std::size_t>(end - rest.begin());
  if (rest.substr(length, 2) != "?=") return std::nullopt;
  return EncodedWord{text.substr(0, at + length + 2), text.substr(2, at - 2), rest[1]};
}

constexpr std::array<bool, 256> MakeBase64Digits() {
  std::array<bool, 256> table{};
  for (std::size_t c = '0'; c <= '9'; ++c) table[c] = true;
  for (std::size_t c = 'A'; c <= 'Z'; ++c) table[c] = true;
  for (std::size_t c = 'a'; c <= 'z'; ++c) table[c] = true;
  table['+'] = table['/'] = true;
  return table;
}
constexpr std::array<bool, 256> kBase64Digits = MakeBase64Digits();

}  // namespace

std::string Unfolded(std::string_view value) {
  std::string line;
  while (!value.empty()) {
    const auto end = std::find_if(value.begin(), value.end(), base::IsLineEnd);
    const auto length = static_cast<std::size_t>(end - value.begin());
    line += value.substr(0, length);
    value.remove_prefix(std::min(value.find_first_not_of(" \t\r\n", length), value.size()));
    if (!value.empty()) line += ' ';
  }
  return std::string(Trim(line));
}

std::vector<Parameter> ParametersOf(std::string_view value) {
  std::vector<Parameter> parameters;
  TakeUpTo(';', &value);
  while (!value.empty()) {
    std::string_view text = TakeUpTo(';', &value);
    if (text.find('=') == kNowhere) continue;
    const std::string_view name = Trim(TakeUpTo('=', &text));
    parameters.push_back({name, WithoutQuotes(Trim(text))});
  }
  return parameters;
}

const Parameter* FindParameter(const std::vector<Parameter>& parameters, std::string_view name) {
  const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& p) {
    return base::EqualsIgnoringCase(p.name, name);
  });
  return found == parameters.end() ? nullptr : &*found;
}

std::string_view TypeOf(std::string_view value) { return Trim(TakeUpTo(';', &value)); }

std::vector<EncodedWord> EncodedWordsOf(std::string_view value) {
  std::vector<EncodedWord> words;
  std::size_t at = 0;
  while ((at = value.find("=?", at)) != kNowhere) {
    const std::optional<EncodedWord> word = WordAtFront(value.substr(at));
    if (word) words.push_back(*word);
    at += word ? word->text.size() : 2;
  }
  return words;
}

bool HasPercentEscape(std::string_view text) {
  for (std::size_t at = 0; (at = text.find('%', at)) != kNowhere; ++at) {
    if (ByteOfEscape(text.substr(at))) return true;
  }
  return false;
}

std::string Unescaped(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const std::optional<char> byte = ByteOfEscape(text);
    bytes += byte.value_or(text.front());
    text.remove_prefix(byte ? 3 : 1);
  }
  return bytes;
}

Base64Fault FindBase64Fault(std::string_view text) {
  constexpr std::size_t kGroup = 4;
  // Number of digits since the last padding, since several base64 texts may follow each other.
  std::size_t digits = 0;
  bool is_padded = false;
  bool goes_on = false;
  for (const char c : text) {
    if (kBase64Digits[static_cast<unsigned char>(c)]) {
      ++digits;
      goes_on = goes_on || is_padded;
    } else if (c == '=') {
      if (digits % kGroup == 1) return Base64Fault::kCut;
      digits = 0;
      is_padded = true;
    } else if (!base::IsBlank(c) && !base::IsLineEnd(c)) {
      return Base64Fault::kForeign;
    }
  }
  if (digits % kGroup == 1) return Base64Fault::kCut;
  return goes_on ? Base64Fault::kMore : Base64Fault::kNone;
}

}  // namespace zqv::cli
