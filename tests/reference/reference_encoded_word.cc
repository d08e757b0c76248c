#include "tests/reference/reference_encoded_word.h"

#include <cstddef>

#include "tests/reference/reference_transfer.h"

namespace zqv::reference {
namespace {

// Reads single characters of a text. Past its end every character is NUL.
class Endless {
 public:
  explicit Endless(const std::string& text) : text_(text.c_str()) {}
  char operator[](std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

 private:
  std::string text_;  // cut at the first NUL
};

std::string Hexadecimal() { return "0123456789abcdef"; }

int Nibble(char c) {
  const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c;
  const std::size_t at = Hexadecimal().find(lower);
  return c != '\0' && at != std::string::npos ? static_cast<int>(at) : 0;
}

std::string DecodeQ(const std::string& text) {
  const Endless endless(text);
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == '_') {
      out += ' ';
      i += 1;
    } else if (text[i] == '=') {
      out += static_cast<char>(Nibble(endless[i + 1]) * 16 + Nibble(endless[i + 2]));
      i += 3;
    } else {
      out += text[i];
      i += 1;
    }
  }
  return out;
}

std::string Decode(char letter, const std::string& payload) {
  if (letter == 'B') return DecodeBase64(payload);
  if (letter == 'Q') return DecodeQ(payload);
  return payload;
}

std::string CollectUpToMark(const Endless& text, std::size_t* at) {
  std::string field;
  while (text[*at] != '?' && text[*at] != '\0') field += text[(*at)++];
  if (text[*at] == '?') ++*at;
  return field;
}

}  // namespace

DecodedWords DecodeWords(const std::string& given) {
  const Endless text(given);
  DecodedWords result;
  std::size_t at = 0;
  while (text[at] != '\0') {
    if (text[at] != '=' || text[at + 1] != '?') {
      result.bytes += text[at++];
      continue;
    }
    at += 2;
    const std::string name = CollectUpToMark(text, &at);
    const char letter = text[at];
    if (letter != '\0') ++at;
    if (text[at] == '?') ++at;
    const std::string payload = CollectUpToMark(text, &at);
    const char closing = text[at];
    if (closing != '\0') ++at;
    if (closing == '=' && text[at] == ' ' && text[at + 1] == '=') ++at;
    result.bytes += Decode(letter, payload);
    if (!name.empty()) result.charset = name;
  }
  return result;
}

std::string StripQuotes(const std::string& text) {
  std::string t = text;
  while (!t.empty() && t[0] == ' ') t = t.substr(1);
  if (t.size() < 3) return t;
  if (t[0] == '"' && t[t.size() - 1] == '"') {
    t = t.substr(1, t.size() - 2);
    if (t.size() >= 3 && t[0] == '\'' && t[t.size() - 1] == '\'') t = t.substr(1, t.size() - 2);
    return t;
  }
  if (t[0] == '\'' && t[t.size() - 1] == '\'') return t.substr(1, t.size() - 2);
  return t;
}

}  // namespace zqv::reference
