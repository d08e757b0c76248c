#include "tests/reference/reference_utf8.h"

#include <bitset>
#include <utility>
#include <vector>

namespace zqv::reference {
namespace {

using ByteRange = std::pair<int, int>;

// One row for each kind of sequence: the allowed range of each of its bytes.
const std::vector<std::vector<ByteRange>>& Rows() {
  static const std::vector<std::vector<ByteRange>> rows = {
      {{0xC2, 0xDF}, {0x80, 0xBF}},
      {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
      {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}},
      {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
      {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}},
      {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
      {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
      {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}},
  };
  return rows;
}

int ByteAt(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

bool Fits(std::string_view bytes, const std::vector<ByteRange>& row) {
  if (bytes.size() < row.size()) return false;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (ByteAt(bytes, i) < row[i].first || ByteAt(bytes, i) > row[i].second) return false;
  }
  return true;
}

// Decodes the code point of a sequence, with its bits as a text of zeros and ones.
char32_t CodePoint(std::string_view sequence) {
  std::string bits;
  for (std::size_t i = 0; i < sequence.size(); ++i) {
    const std::string byte = std::bitset<8>(static_cast<unsigned>(ByteAt(sequence, i))).to_string();
    // The first byte of a sequence of n bytes begins with n ones and a zero, each further byte with
    // "10".
    bits += byte.substr(i == 0 ? sequence.size() + 1 : 2);
  }
  return static_cast<char32_t>(std::stoul(bits, nullptr, 2));
}

}  // namespace

std::size_t AllowedSequence(std::string_view bytes) {
  for (const auto& row : Rows()) {
    if (Fits(bytes, row)) return row.size();
  }
  return 0;
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const int byte = ByteAt(bytes, 0);
    const bool is_text =
        byte == 0x09 || byte == 0x0A || byte == 0x0D || (byte >= 0x20 && byte <= 0x7E);
    const std::size_t length = is_text ? 1 : AllowedSequence(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

DecodedUtf8 DecodeUtf8(std::string_view bytes) {
  DecodedUtf8 result;
  while (result.stopped < bytes.size()) {
    const std::string_view rest = bytes.substr(result.stopped);
    const bool is_ascii = ByteAt(rest, 0) < 0x80;
    const std::size_t length = is_ascii ? 1 : AllowedSequence(rest);
    if (length == 0) break;
    const char32_t c =
        is_ascii ? static_cast<char32_t>(rest[0]) : CodePoint(rest.substr(0, length));
    if (c != 0xFEFF && c != 0xFFFE) result.code_points += c;
    result.stopped += length;
  }
  return result;
}

}  // namespace zqv::reference
