#include "cli/utf8.h"

#include <algorithm>
#include <iterator>

#include "standin/charset.h"

namespace zqv::cli {
namespace {

// What a lead byte determines: the length of the sequence, the bits in the lead byte, and the
// bounds of the second byte, which exclude over-long forms, surrogates and code points above
// U+10FFFF.
struct Lead {
  std::size_t bytes;
  unsigned bits;
  unsigned second_low;
  unsigned second_high;
};

// `bytes` is 0 for a byte that cannot begin a sequence.
Lead LeadOf(unsigned byte) {
  if (byte < 0x80) return {1, byte, 0, 0};
  if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0, 0};
  if (byte < 0xE0) return {2, byte & 0x1FU, 0x80, 0xBF};
  if (byte < 0xF0) {
    return {3, byte & 0x0FU, byte == 0xE0 ? 0xA0U : 0x80U, byte == 0xED ? 0x9FU : 0xBFU};
  }
  return {4, byte & 0x07U, byte == 0xF0 ? 0x90U : 0x80U, byte == 0xF4 ? 0x8FU : 0xBFU};
}

unsigned ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

}  // namespace

CodePoint FirstCodePoint(std::string_view text) {
  const unsigned first = ByteAt(text, 0);
  const CodePoint broken = {first, 1, false};
  const Lead lead = LeadOf(first);
  if (lead.bytes == 0 || lead.bytes > text.size()) return broken;
  char32_t value = lead.bits;
  for (std::size_t i = 1; i < lead.bytes; ++i) {
    const unsigned byte = ByteAt(text, i);
    const unsigned low = i == 1 ? lead.second_low : 0x80U;
    const unsigned high = i == 1 ? lead.second_high : 0xBFU;
    if (byte < low || byte > high) return broken;
    value = value << 6U | (byte & 0x3FU);
  }
  return {value, lead.bytes, true};
}

void AppendCharacter(char32_t number, std::string* text) {
  constexpr char32_t kReplacement = 0xFFFD;
  constexpr char32_t kMost = 0x10FFFF;
  const bool is_surrogate = number >= 0xD800 && number <= 0xDFFF;
  const bool is_character = number != 0 && number <= kMost && !is_surrogate;
  standin::AppendUtf8(is_character ? number : kReplacement, text);
}

std::size_t WholeSequences(std::string_view text, std::size_t most) {
  std::size_t length = 0;
  while (length < text.size()) {
    const std::size_t next = length + FirstCodePoint(text.substr(length)).bytes;
    if (next > most) break;
    length = next;
  }
  return length;
}

bool IsDirectionMark(char32_t c) { return c == 0x061C || c == 0x200E || c == 0x200F; }

bool IsDirectionOverride(char32_t c) {
  return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool IsInvisible(char32_t c) {
  struct Range {
    char32_t first;
    char32_t last;
  };
  // The categories Cf, Zl and Zp of the Unicode Character Database, without visible characters, and
  // the fillers of Hangul.
  static constexpr Range kRanges[] = {
      {0x00AD, 0x00AD},   {0x034F, 0x034F}, {0x061C, 0x061C},   {0x115F, 0x1160},
      {0x17B4, 0x17B5},   {0x180E, 0x180E}, {0x200B, 0x200B},   {0x200E, 0x200F},
      {0x2028, 0x202E},   {0x2060, 0x206F}, {0x3164, 0x3164},   {0xFEFF, 0xFEFF},
      {0xFFA0, 0xFFA0},   {0xFFF9, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
      {0xE0000, 0xE0FFF},
  };
  return std::any_of(std::begin(kRanges), std::end(kRanges),
                     [&](const Range& range) { return c >= range.first && c <= range.last; });
}

bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

}  // namespace zqv::cli
