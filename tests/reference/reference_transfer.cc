#include "tests/reference/reference_transfer.h"

#include <bitset>
#include <cstddef>

namespace zqv::reference {
namespace {

// The index of `c` in a list of characters; npos when it is not in the list.
std::size_t PlaceIn(std::string_view list, char c) { return list.find(c); }

constexpr std::size_t kNowhere = std::string_view::npos;
constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Six bits for each of at most four characters, as a text of zeros and ones.
std::string BitsOf(std::string_view four) {
  std::string bits;
  for (const char c : four) {
    const bool ends = c == '=' && bits.size() >= 12;
    if (ends) break;
    const std::size_t value = c == '=' ? 100 : PlaceIn(kAlphabet, c);
    bits += std::bitset<6>(value).to_string();
  }
  return bits;
}

// The beginning of a text, and what it is decoded to.
struct Piece {
  std::size_t length;
  std::string decoded;
};

Piece Kept(std::string_view beginning) { return {beginning.size(), std::string(beginning)}; }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }
bool IsControl(char c) { return c >= 0 && c < ' '; }

std::size_t HexadecimalValue(char c) {
  const std::size_t upper = PlaceIn("0123456789ABCDEF", c);
  return upper != kNowhere ? upper : PlaceIn("0123456789abcdef", c);
}
bool IsHexadecimal(char c) { return HexadecimalValue(c) != kNowhere; }

std::size_t CountBlanks(std::string_view text) {
  std::size_t count = 0;
  while (count < text.size() && IsBlank(text[count])) ++count;
  return count;
}

// Two different characters make one line end, two equal ones make two.
std::size_t LineEndLength(std::string_view text) {
  const bool is_pair = text.size() > 1 && IsLineEnd(text[1]) && text[1] != text[0];
  return is_pair ? 2 : 1;
}

Piece Undecided(std::string_view all) {
  const bool is_tab_second = all.size() > 1 && all[1] == '\t';
  return {all.size(), is_tab_second ? "=\t" : "="};
}

// Decodes a `text` that begins with "=" and a character that is neither a blank nor a line end.
Piece DecodeCode(std::string_view text) {
  if (!IsHexadecimal(text[1])) return Kept(text.substr(0, 2));
  if (text.size() == 2 || !IsHexadecimal(text[2])) return Kept(text.substr(0, 3));
  const std::size_t byte = HexadecimalValue(text[1]) * 16 + HexadecimalValue(text[2]);
  return {3, std::string(1, static_cast<char>(byte))};
}

Piece DecodeEquals(std::string_view text) {
  const std::size_t blanks = CountBlanks(text.substr(1));
  const std::string_view rest = text.substr(1 + blanks);
  if (rest.empty()) return Undecided(text);
  if (IsLineEnd(rest[0]) && rest.size() == 1) return Undecided(text);
  if (IsLineEnd(rest[0])) return {1 + blanks + LineEndLength(rest), ""};
  if (blanks > 0) return Kept(text.substr(0, 1 + blanks));
  return DecodeCode(text);
}

Piece DecodeBlanks(std::string_view text) {
  const std::size_t blanks = CountBlanks(text);
  if (blanks == text.size()) return Undecided(text);
  if (IsLineEnd(text[blanks])) return {blanks + 1, ""};
  return Kept(text.substr(0, blanks));
}

Piece DecodeBeginning(std::string_view text) {
  if (text[0] == '=') return DecodeEquals(text);
  if (IsBlank(text[0])) return DecodeBlanks(text);
  if (IsLineEnd(text[0])) return {LineEndLength(text), "\n"};
  if (IsControl(text[0])) return {1, ""};
  return Kept(text.substr(0, 1));
}

}  // namespace

std::string DecodeBase64(std::string_view text) {
  std::string known;
  for (const char c : text) {
    if (c == '=' || PlaceIn(kAlphabet, c) != kNowhere) known += c;
  }
  std::string out;
  for (std::size_t i = 0; i < known.size(); i += 4) {
    const std::string bits = BitsOf(std::string_view(known).substr(i, 4));
    for (std::size_t bit = 0; bit + 8 <= bits.size(); bit += 8) {
      out += static_cast<char>(std::stoi(bits.substr(bit, 8), nullptr, 2));
    }
  }
  return out;
}

std::string DecodeQuotedPrintable(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const Piece piece = DecodeBeginning(text);
    out += piece.decoded;
    text.remove_prefix(piece.length);
  }
  return out;
}

}  // namespace zqv::reference
