// UTF-8 is validated by a table of lead bytes, which gives a sequence's length and the range of its
// second byte:
//
//   C3 A9      U+00E9
//   E2 82 AC   U+20AC
//   C0 80      ill-formed: C0 is no lead byte, the sequence would be overlong
//   ED A0 80   ill-formed: after ED a second byte above 9F would give a surrogate
//
// Every function is one forward pass. Runs of ASCII, the most frequent input, are handled 8 or 16
// bytes at a time.
#include "base/unicode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "base/bytes16.h"

namespace zqv::base {
namespace {

constexpr char32_t kHighSurrogates = 0xD800;
constexpr char32_t kLowSurrogates = 0xDC00;
constexpr char32_t kSurrogatesEnd = 0xE000;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kSwappedByteOrderMark = 0xFFFE;

std::uint8_t Byte(char c) { return static_cast<std::uint8_t>(c); }

bool IsTextByte(std::uint8_t byte) {
  return (byte >= 0x20 && byte <= 0x7E) || byte == '\t' || byte == '\n' || byte == '\r';
}

// Eight bytes of a text in one integer, for SWAR ("SIMD within a register").
using Word = std::uint64_t;
constexpr Word kEachByte = 0x0101010101010101u;
constexpr Word kHighBits = 0x80 * kEachByte;

Word LoadWord(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Nonzero if and only if a byte of `word` is below `limit`. All bytes of `word` must be below 0x80.
// The result has the high bit of each such byte set, and by borrowing sometimes that of the next.
constexpr Word BytesBelow(Word word, Word limit) { return (word - limit * kEachByte) & kHighBits; }

// Whether all eight bytes are 0x20 to 0x7E.
bool IsPrintable(Word word) {
  if ((word & kHighBits) != 0) return false;
  return (BytesBelow(word, 0x20) | BytesBelow(word ^ 0x7F * kEachByte, 1)) == 0;
}

// The well-formed multi-byte sequences (RFC 3629, section 4): a range of lead bytes, the range of
// the second byte after them, and the length in bytes. After some lead bytes the second byte has a
// smaller range than 80 to BF, which excludes overlong forms, surrogates and values above U+10FFFF.
struct Lead {
  std::uint8_t first, last;
  std::uint8_t second, second_last;
  std::size_t length;
};
constexpr Lead kLeads[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

constexpr std::uint8_t kNoLead = std::size(kLeads);

// Maps each byte to its row of kLeads, or to kNoLead.
constexpr std::array<std::uint8_t, 256> MakeLeadRows() {
  std::array<std::uint8_t, 256> rows{};
  for (std::uint8_t& row : rows) row = kNoLead;
  for (std::uint8_t row = 0; row < kNoLead; ++row) {
    for (std::size_t byte = kLeads[row].first; byte <= kLeads[row].last; ++byte) rows[byte] = row;
  }
  return rows;
}
constexpr std::array<std::uint8_t, 256> kLeadRows = MakeLeadRows();

bool IsTrail(char c) { return (Byte(c) & 0xC0) == 0x80; }

// The length of the well-formed multi-byte sequence that `bytes` begin with, or 0 when there is
// none within the `available` bytes.
std::size_t LegalMultiByteLength(const char* bytes, std::size_t available) {
  const std::uint8_t row = kLeadRows[Byte(bytes[0])];
  if (row == kNoLead) return 0;
  const Lead& lead = kLeads[row];
  if (available < lead.length) return 0;
  if (Byte(bytes[1]) < lead.second || Byte(bytes[1]) > lead.second_last) return 0;
  return std::all_of(bytes + 2, bytes + lead.length, IsTrail) ? lead.length : 0;
}

bool IsMark(char32_t c) { return c == kByteOrderMark || c == kSwappedByteOrderMark; }

// Converts sixteen ASCII characters to code points. Returns false, and writes nothing, when one of
// the sixteen bytes is not ASCII.
bool WidenAscii(const char* from, char32_t* to) {
  const Bytes16 bytes = LoadBytes16(from);
  if (AnyOf(bytes < 0)) return false;
  char32_t wide[kBytes16] = {};
  for (std::size_t i = 0; i < kBytes16; ++i) wide[i] = static_cast<char32_t>(bytes[i]);
  std::memcpy(to, wide, sizeof wide);
  return true;
}

// Tests bytes in blocks of sixteen (`test` as in bytes16.h). Returns bytes.size() when all pass.
// Otherwise returns the start of the block with the first byte that fails; all before it pass.
template <class Test>
std::size_t PassingLength(std::string_view bytes, Test test) {
  constexpr std::size_t kStep = 4 * kBytes16;
  if (bytes.empty()) return 0;
  if (bytes.size() < kBytes16) {
    return AllOf(test(LoadShort(bytes.data(), bytes.size()))) ? bytes.size() : 0;
  }
  const auto passes = [&](std::size_t at) { return test(LoadBytes16(bytes.data() + at)); };
  const std::size_t last = bytes.size() - kBytes16;
  std::size_t at = 0;
  for (; at + kStep <= bytes.size(); at += kStep) {
    const Bytes16 all =
        passes(at) & passes(at + kBytes16) & passes(at + 2 * kBytes16) & passes(at + 3 * kBytes16);
    if (!AllOf(all)) break;
  }
  for (; at < last; at += kBytes16) {
    if (!AllOf(passes(at))) return at;
  }
  return AllOf(passes(last)) ? bytes.size() : at;
}

// Decodes one well-formed sequence of two to four bytes. Its first byte begins with `length` ones
// and a zero; the bits after these belong to the code point.
char32_t DecodeLegal(const char* bytes, std::size_t length) {
  char32_t c = Byte(bytes[0]) & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) c = (c << 6) | (Byte(bytes[i]) & 0x3Fu);
  return c;
}

}  // namespace

bool IsAscii(std::string_view bytes) {
  return PassingLength(bytes, [](Bytes16 c) { return c >= 0; }) == bytes.size();
}

std::size_t LengthOfAsciiText(std::string_view bytes) {
  const std::size_t known = PassingLength(bytes, [](Bytes16 c) { return c > 0; });
  const char* const stop = std::find_if(bytes.data() + known, bytes.data() + bytes.size(),
                                        [](char c) { return c == '\0' || Byte(c) >= 0x80; });
  return static_cast<std::size_t>(stop - bytes.data());
}

bool is_utf8(const char* bytes, std::size_t length) {
  std::size_t i = 0;
  while (i < length) {
    if (length - i >= sizeof(Word) && IsPrintable(LoadWord(bytes + i))) {
      i += sizeof(Word);
      continue;
    }
    if (Byte(bytes[i]) < 0x80) {
      if (!IsTextByte(Byte(bytes[i]))) return false;
      ++i;
      continue;
    }
    const std::size_t sequence = LegalMultiByteLength(bytes + i, length - i);
    if (sequence == 0) return false;
    i += sequence;
  }
  return true;
}

abi::Encoding DetectEncoding(std::string_view bytes) {
  if (IsAscii(bytes)) return abi::kAscii;
  return is_utf8(bytes.data(), bytes.size()) ? abi::kUtf8 : abi::kMacRoman;
}

bool IsLegalUTF8(const char* sequence, std::size_t length) {
  if (length == 1) return Byte(sequence[0]) < 0x80;
  return length == Utf8SequenceLength(sequence[0]) &&
         LegalMultiByteLength(sequence, length) == length;
}

std::size_t Utf8SequenceLength(char lead) {
  const std::uint8_t byte = Byte(lead);
  if (byte < 0xC0) return 1;
  if (byte < 0xE0) return 2;
  if (byte < 0xF0) return 3;
  if (byte < 0xF8) return 4;
  return byte < 0xFC ? 5 : 6;
}

Conversion Utf8ToUtf32(std::string_view bytes, char32_t* out) {
  Conversion result;
  while (result.stopped < bytes.size()) {
    const char* sequence = bytes.data() + result.stopped;
    if (bytes.size() - result.stopped >= kBytes16 && WidenAscii(sequence, out + result.written)) {
      result.stopped += kBytes16;
      result.written += kBytes16;
      continue;
    }
    if (Byte(*sequence) < 0x80) {
      out[result.written++] = Byte(*sequence);
      ++result.stopped;
      continue;
    }
    const std::size_t length = Utf8SequenceLength(*sequence);
    if (length > bytes.size() - result.stopped || !IsLegalUTF8(sequence, length)) {
      result.legal = false;
      break;
    }
    const char32_t c = DecodeLegal(sequence, length);
    if (!IsMark(c)) out[result.written++] = c;
    result.stopped += length;
  }
  return result;
}

Conversion Utf16ToUtf32(const char16_t* units, std::size_t count, char32_t* out) {
  Conversion result;
  std::size_t i = 0;
  while (i < count) {
    char32_t c = units[i];
    std::size_t used = 1;
    if (c >= kHighSurrogates && c < kSurrogatesEnd) {
      const bool is_pair = c < kLowSurrogates && i + 1 < count && units[i + 1] >= kLowSurrogates &&
                           units[i + 1] < kSurrogatesEnd;
      if (!is_pair) {
        result.legal = false;
        break;
      }
      c = kFirstSupplementary + ((c - kHighSurrogates) << 10) + (units[i + 1] - kLowSurrogates);
      used = 2;
    }
    if (!IsMark(c)) out[result.written++] = c;
    i += used;
  }
  result.stopped = i * sizeof(char16_t);
  return result;
}

std::size_t Utf32ToUtf16(const char32_t* code_points, std::size_t count, char16_t* out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const char32_t c = code_points[i];
    if (c >= kHighSurrogates && c < kSurrogatesEnd) continue;
    if (c < kFirstSupplementary) {
      out[written++] = static_cast<char16_t>(c);
    } else if (c <= kLastCodePoint) {
      const char32_t offset = c - kFirstSupplementary;
      out[written++] = static_cast<char16_t>(kHighSurrogates + (offset >> 10));
      out[written++] = static_cast<char16_t>(kLowSurrogates + (offset & 0x3FF));
    } else {
      out[written++] = static_cast<char16_t>(kReplacement);
    }
  }
  out[written] = 0;
  return written;
}

}  // namespace zqv::base
