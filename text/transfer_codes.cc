// Two decoders, each with a fast path for regular input and a slow path for the rest. Both paths
// give the same bytes as mimetic, whose decoders read one character at a time.
//
//   base64             "TWFu"          6-bit values 19 22 5 46, bytes "Man"
//                      "TWE=", "TQ=="  bytes "Ma", "M"
//   quoted-printable   "a=3Db=\r\nc"   bytes "a=bc"
//
// Base64: lines that hold only characters of the alphabet are decoded 16 or 32 characters at a time
// by table lookup (base/bytes16.h); otherwise four at a time; otherwise character by character.
// Quoted-printable: the characters that need attention are found for 64 characters at a time.
#include "text/transfer_codes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/ascii.h"
#include "base/bytes16.h"

namespace zqv::text {
namespace {

using base::Bytes16;
using base::CanLookUp;
using base::FirstOf;
using base::IsAllZero;
using base::JoinSixBits;
using base::JoinTwelves;
using base::kBytes16;
using base::kWideBytes;
using base::LoadBytes16;
using base::LoadWideBytes;
using base::LookUp;
using base::StoreBytes16;
using base::StoreWideBytes;
using base::TableOf;
using base::UpperNibbles;
using base::WideBytes;

static_assert(kWideBytes <= kBase64Slack);

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Entries of kSixBits for characters without a 6-bit value. Each has a bit that no value has, so
// that an "or" of several entries shows whether one of them is such a character.
constexpr std::uint8_t kNotInAlphabet = 0x80;
constexpr std::uint8_t kEquals = 0x40;
// Mimetic's decoding table has 100 for "=", of which six bits are used where it is no padding.
constexpr std::uint32_t kEqualsAsValue = 100 & 63;

constexpr std::array<std::uint8_t, 256> MakeSixBits() {
  std::array<std::uint8_t, 256> table{};
  for (std::uint8_t& entry : table) entry = kNotInAlphabet;
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  table['='] = kEquals;
  return table;
}
constexpr std::array<std::uint8_t, 256> kSixBits = MakeSixBits();

std::uint32_t SixBits(char c) { return kSixBits[static_cast<unsigned char>(c)]; }

// Lookup tables for validating and decoding many characters at a time. A character is split into
// its upper and lower four bits ("nibbles"), each of which indexes a table:
//
//   upper[u] & lower[l]   nonzero if the character is not in the alphabet. Each upper nibble from 2
//                         to 7 has a bit of its own, which lower[l] has if that character is not.
//   shift[u]              what to add to the character to get its 6-bit value. "/" shares its upper
//                         nibble with "+" and needs another shift; it uses index u - 1.
struct NibbleTables {
  std::array<std::int8_t, kBytes16> upper;
  std::array<std::int8_t, kBytes16> lower;
  std::array<std::int8_t, kBytes16> shift;
};

constexpr NibbleTables MakeNibbleTables() {
  constexpr std::int8_t kNever = 0x40;
  NibbleTables tables{};
  for (std::size_t upper = 0; upper < 16; ++upper) {
    const bool has_any = upper >= 2 && upper < 8;
    const auto bit = static_cast<std::int8_t>(has_any ? 1 << (upper - 2) : kNever);
    tables.upper[upper] = bit;
    for (std::size_t lower = 0; lower < 16; ++lower) {
      const std::size_t c = upper * 16 + lower;
      if (kSixBits[c] >= kEquals) {
        tables.lower[lower] = static_cast<std::int8_t>(tables.lower[lower] | bit);
      } else {
        tables.shift[c == '/' ? upper - 1 : upper] = static_cast<std::int8_t>(kSixBits[c] - c);
      }
    }
  }
  return tables;
}
constexpr NibbleTables kNibbles = MakeNibbleTables();

// For each 32-bit word with 24 bits of output: the order of its three bytes, the highest first.
constexpr std::array<std::int8_t, kBytes16> kByteOrder = {2, 1,  0,  6,  5,  4,  10, 9,
                                                          8, 14, 13, 12, -1, -1, -1, -1};

// The current positions in the input and in the output. Kept in a local variable, not in members,
// so that the compiler can hold both in registers.
struct Positions {
  const char* at;
  char* out;
};

// Decodes kWideBytes characters to 3/4 as many bytes. Always writes kWideBytes bytes: the last
// quarter is garbage. Returns a vector that is nonzero in each lane whose character is not in the
// alphabet; if any is, everything written is garbage.
ZQV_LOOKS_UP inline WideBytes DecodeBlock(const char* in, char* out) {
  const WideBytes c = LoadWideBytes(in);
  const WideBytes upper = UpperNibbles(c);
  const WideBytes invalid =
      LookUp(TableOf(kNibbles.upper), upper) & LookUp(TableOf(kNibbles.lower), c & 0x0F);
  const WideBytes values = c + LookUp(TableOf(kNibbles.shift), upper + (c == '/'));
  StoreWideBytes(JoinTwelves(LookUp(JoinSixBits(values), TableOf(kByteOrder))), out);
  return invalid;
}

// Decodes consecutive lines of exactly `length` characters, as long as each is followed by a line
// end and holds only characters of the alphabet. Returns the positions after the last such line.
// `length` is at least kWideBytes. When it is no multiple of kWideBytes, the last block of a line
// overlaps the one before it and writes some bytes a second time.
ZQV_LOOKS_UP Positions DecodeLines(Positions positions, const char* end, std::size_t length) {
  const std::size_t last = length - kWideBytes;
  while (static_cast<std::size_t>(end - positions.at) > length &&
         base::IsLineEnd(positions.at[length])) {
    WideBytes invalid = {};
    std::size_t block = 0;
    while (true) {
      invalid |= DecodeBlock(positions.at + block, positions.out + block / 4 * 3);
      if (block == last) break;
      block = std::min(block + kWideBytes, last);
    }
    if (!IsAllZero(invalid)) break;
    positions.at = std::find_if_not(positions.at + length, end, base::IsLineEnd);
    positions.out += length / 4 * 3;
  }
  return positions;
}

class Base64Decoder {
 public:
  Base64Decoder(std::string_view text, char* out)
      : begin_(text.data()),
        at_(begin_),
        end_(begin_ + text.size()),
        out_(out),
        can_look_up_(CanLookUp()) {}

  // Decodes the whole text. Returns the end of the output.
  char* Run() {
    while (at_ != end_) {
      if (can_look_up_ && IsAtLineStart()) ReadLines();
      for (std::uint32_t bits = 0; IsRegular(bits); at_ += kGroup) Put(bits, 3);
      at_ = std::find_if_not(at_, end_, [](char c) { return SixBits(c) == kNotInAlphabet; });
      std::uint32_t bits = 0;
      if (!IsRegular(bits)) ReadGroup();
    }
    return out_;
  }

 private:
  static constexpr std::ptrdiff_t kGroup = 4;

  // ReadLines is tried at line starts only. It searches up to 1,024 characters for a line end,
  // which at every position of a text without line ends would take a thousand times as long.
  bool IsAtLineStart() const { return at_ == begin_ || base::IsLineEnd(at_[-1]); }

  // Decodes lines as long as the one at the current position. Does nothing when that line is too
  // short, too long, or no whole number of groups.
  void ReadLines() {
    constexpr std::ptrdiff_t kLongest = 1024;
    const char* const longest = end_ - at_ > kLongest ? at_ + kLongest : end_;
    const char* const line_end =
        std::find_if(at_, longest, [](char c) { return base::IsLineEnd(c); });
    const auto length = static_cast<std::size_t>(line_end - at_);
    if (line_end == longest || length < kWideBytes || length % kGroup != 0) return;
    const Positions rest = DecodeLines({at_, out_}, end_, length);
    at_ = rest.at;
    out_ = rest.out;
  }

  // Whether the next four characters are all in the alphabet. If so, sets the 24 bits of the group.
  bool IsRegular(std::uint32_t& bits) const {
    if (end_ - at_ < kGroup) return false;
    const std::uint32_t a = SixBits(at_[0]);
    const std::uint32_t b = SixBits(at_[1]);
    const std::uint32_t c = SixBits(at_[2]);
    const std::uint32_t d = SixBits(at_[3]);
    bits = a << 18U | b << 12U | c << 6U | d;
    return (a | b | c | d) < kEquals;
  }

  // Decodes one group of four characters, with padding, skipping characters outside the alphabet.
  // The group is shorter at the end of the text.
  void ReadGroup() {
    std::uint32_t bits = 0;
    std::size_t known = 0;  // number of bits set so far, from the highest of 24
    bool has_ended = false;
    for (std::size_t read = 0; at_ != end_ && read < kGroup; ++at_) {
      const std::uint32_t value = SixBits(*at_);
      if (value == kNotInAlphabet) continue;
      ++read;
      has_ended = has_ended || (value == kEquals && read > 2);
      if (has_ended) continue;
      bits |= (value == kEquals ? kEqualsAsValue : value) << (24 - 6 * read);
      known += 6;
    }
    Put(bits, known / 8);
  }

  // Writes the first `count` of the three bytes in the low 24 of `bits`, the highest first.
  void Put(std::uint32_t bits, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) *out_++ = static_cast<char>(bits >> (16 - 8 * i));
  }

  const char* const begin_;
  const char* at_;
  const char* const end_;
  char* out_;
  const bool can_look_up_;
};

// Maps each character to whether it ends a run of characters that are copied unchanged: "=" and all
// control characters but the tab do.
constexpr std::array<bool, 256> MakeEndsRun() {
  std::array<bool, 256> table{};
  for (std::size_t c = 0; c < ' '; ++c) table[c] = c != '\t';
  table['='] = true;
  return table;
}
constexpr std::array<bool, 256> kEndsRun = MakeEndsRun();

bool EndsRun(char c) { return kEndsRun[static_cast<unsigned char>(c)]; }

constexpr std::array<std::int8_t, 256> MakeDigitValues() {
  std::array<std::int8_t, 256> table{};
  for (std::size_t c = 0; c < 256; ++c) {
    table[c] = static_cast<std::int8_t>(base::HexadecimalValue(static_cast<char>(c)));
  }
  return table;
}
constexpr std::array<std::int8_t, 256> kDigitValues = MakeDigitValues();

int DigitValue(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

class QuotedPrintableDecoder {
 public:
  explicit QuotedPrintableDecoder(std::string_view text)
      : at_(text.data()),
        end_(text.data() + text.size()),
        run_(at_),
        decoded_(text.size() + static_cast<std::size_t>(kBytes64)) {
    out_ = decoded_.data();
  }

  DecodedBytes Run() {
    while (at_ != end_) {
      ReadRegular();
      KeepRun();
      if (at_ == end_ || base::IsLineEnd(*at_)) {
        EndLine();
      } else if (*at_ == '=') {
        ReadEquals();
      } else {
        ++at_;
      }
      run_ = at_;
    }
    decoded_.EndAt(out_);
    return std::move(decoded_);
  }

 private:
  // The mask (bytes16.h) of the characters that end a run, as kEndsRun.
  static Bytes16 EndRun(Bytes16 c) {
    const Bytes16 are_controls = (c & ~(' ' - 1)) == 0;
    return (c == '=') | (are_controls & (c != '\t'));
  }

  // The fast path. For each block of 64 characters it computes a bit set of the characters that end
  // a run and then visits them, which costs fewer mispredicted branches than a loop over each run.
  // Stops at a character that ReadRegularEnd does not accept, and near the end of the text.
  //
  // `run_` is not moved here. EndLine searches the input backwards from a line end to `run_` for
  // blanks, and still stops in time: at the digit that ends a code, or at the LF of an earlier line
  // end.
  void ReadRegular() {
    Positions positions{at_, out_};
    bool is_regular = true;
    while (is_regular && end_ - positions.at >= 2 * kBytes64) {
      const char* const block = positions.at;
      std::uint64_t ends = base::BitsOf64(block, EndRun);
      for (; is_regular && ends != 0; ends &= ends - 1) {
        const char* const end = block + __builtin_ctzll(ends);
        if (end < positions.at) continue;  // consumed already, as part of a code or CRLF
        KeepShort(end, positions);
        is_regular = ReadRegularEnd(positions);
      }
      if (is_regular && positions.at < block + kBytes64) KeepShort(block + kBytes64, positions);
    }
    at_ = positions.at;
    out_ = positions.out;
  }

  // Decodes "=" with two digits, "=" with CRLF, or CRLF without a blank before it. Returns false,
  // and consumes nothing, at anything else.
  bool ReadRegularEnd(Positions& positions) const {
    const char* const at = positions.at;
    if (*at == '=') {
      const int byte = ByteAt(at);
      if (byte >= 0) {
        *positions.out++ = static_cast<char>(byte);
      } else if (at[1] != '\r' || at[2] != '\n') {
        return false;
      }
      positions.at += 3;
      return true;
    }
    if (at[0] != '\r' || at[1] != '\n' || (at != run_ && base::IsBlank(at[-1]))) return false;
    *positions.out++ = '\n';
    positions.at += 2;
    return true;
  }

  // Copies the characters up to `end`, at most 64 of them. May write up to 64 bytes in any case.
  static void KeepShort(const char* end, Positions& positions) {
    const auto copy = [&positions](std::size_t block) {
      StoreBytes16(LoadBytes16(positions.at + block * kBytes16), positions.out + block * kBytes16);
    };
    const std::ptrdiff_t length = end - positions.at;
    copy(0);
    copy(1);
    if (length > 2 * static_cast<std::ptrdiff_t>(kBytes16)) {
      copy(2);
      copy(3);
    }
    positions.at = end;
    positions.out += length;
  }

  // Copies the characters up to `end`.
  void Keep(const char* end) {
    out_ = std::copy(at_, end, out_);
    at_ = end;
  }

  // Skips blanks.
  const char* BlanksEnd(const char* at) const {
    while (at != end_ && base::IsBlank(*at)) ++at;
    return at;
  }

  // Skips a line end: CR, LF, or one of each in either order.
  void TakeLineEnd() {
    const char first = *at_++;
    if (at_ != end_ && base::IsLineEnd(*at_) && *at_ != first) ++at_;
  }

  // Skips the rest of the text, which is blanks or an incomplete code. Writes "=" for it, as
  // mimetic does, and a tab if its second character is a tab.
  void TakeUndecided() {
    *out_++ = '=';
    if (end_ - at_ > 1 && at_[1] == '\t') *out_++ = '\t';
    at_ = end_;
  }

  // Copies up to the character that ends the run.
  void KeepRun() {
    while (static_cast<std::size_t>(end_ - at_) >= kBytes16) {
      const Bytes16 c = LoadBytes16(at_);
      const std::size_t length = FirstOf(EndRun(c));
      StoreBytes16(c, out_);
      at_ += length;
      out_ += length;
      if (length != kBytes16) return;
    }
    const char* run_end = at_;
    while (run_end != end_ && !EndsRun(*run_end)) ++run_end;
    Keep(run_end);
  }

  // Handles the end of a line or of the text. Removes the blanks before it from the output. If
  // there were any, skips only the first character of the line end; otherwise writes LF for all of
  // it.
  void EndLine() {
    const char* blanks = at_;
    while (blanks != run_ && base::IsBlank(blanks[-1])) --blanks;
    out_ -= at_ - blanks;
    if (at_ != end_ && blanks != at_) {
      ++at_;
    } else if (at_ != end_) {
      TakeLineEnd();
      *out_++ = '\n';
    } else if (blanks != at_) {
      at_ = blanks;
      TakeUndecided();
    }
  }

  // Handles "=": a code, a soft line break, or neither.
  void ReadEquals() {
    if (end_ - at_ > 2 && ReadByte()) return;
    const char* const rest = BlanksEnd(at_ + 1);
    if (rest == end_ || (base::IsLineEnd(*rest) && rest + 1 == end_)) {
      TakeUndecided();
    } else if (base::IsLineEnd(*rest)) {
      at_ = rest;
      TakeLineEnd();
    } else if (rest != at_ + 1) {
      Keep(rest);
    } else {
      KeepMalformed();
    }
  }

  // The value of the two hexadecimal digits after "="; negative when one of them is no digit.
  static int ByteAt(const char* at) { return DigitValue(at[1]) * 16 | DigitValue(at[2]); }

  // Decodes "=" with two digits. Returns false, and consumes nothing, at anything else.
  bool ReadByte() {
    const int byte = ByteAt(at_);
    if (byte < 0) return false;
    *out_++ = static_cast<char>(byte);
    at_ += 3;
    return true;
  }

  // Copies "=" and the character after it, which are no code. If that character is a digit, the one
  // after it is copied, too.
  void KeepMalformed() {
    const bool has_digit = DigitValue(at_[1]) >= 0 && end_ - at_ > 2;
    Keep(at_ + (has_digit ? 3 : 2));
  }

  static constexpr std::ptrdiff_t kBytes64 = 64;

  const char* at_;
  const char* end_;
  const char* run_;  // start of the run of characters that are copied unchanged
  DecodedBytes decoded_;
  char* out_;
};

}  // namespace

char* DecodeBase64(std::string_view text, char* out) { return Base64Decoder(text, out).Run(); }

DecodedBytes DecodeBase64(std::string_view text) {
  DecodedBytes decoded(Base64Room(text.size()));
  decoded.EndAt(DecodeBase64(text, decoded.data()));
  return decoded;
}

DecodedBytes DecodeQuotedPrintable(std::string_view text) {
  return QuotedPrintableDecoder(text).Run();
}

}  // namespace zqv::text
