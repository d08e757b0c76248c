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
using base::UpperHalves;
using base::WideBytes;

static_assert(kWideBytes <= kBase64Slack);

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// By character: its six bits, or one of these. Both have a bit that no value has.
constexpr std::uint8_t kStranger = 0x80;
constexpr std::uint8_t kEquals = 0x40;
constexpr std::uint32_t kEqualsAsValue = 100 & 63;

constexpr std::array<std::uint8_t, 256> MakeSixBits() {
  std::array<std::uint8_t, 256> table{};
  for (std::uint8_t& entry : table) entry = kStranger;
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  table['='] = kEquals;
  return table;
}
constexpr std::array<std::uint8_t, 256> kSixBits = MakeSixBits();

std::uint32_t SixBits(char c) { return kSixBits[static_cast<unsigned char>(c)]; }

// By the upper and by the lower half of a character: a bit that both have tells that the character
// is not of the alphabet. `shift` is what makes a character its value, by the upper half, but for
// "/", whose row is the one before.
struct HalfTables {
  std::array<std::int8_t, kBytes16> upper;
  std::array<std::int8_t, kBytes16> lower;
  std::array<std::int8_t, kBytes16> shift;
};

constexpr HalfTables MakeHalfTables() {
  constexpr std::int8_t kNever = 0x40;
  HalfTables tables{};
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
constexpr HalfTables kHalves = MakeHalfTables();

// From bits in 32-bit words to bytes, the highest first.
constexpr std::array<std::int8_t, kBytes16> kByteOrder = {2, 1,  0,  6,  5,  4,  10, 9,
                                                          8, 14, 13, 12, -1, -1, -1, -1};

// A place in a text and in what it gives, which the processor keeps in registers.
struct Places {
  const char* at;
  char* out;
};

// Where bytes can be looked up, whole lines of the alphabet are read a block at a time: four
// characters to three bytes, and as many more bytes at the end as fill the block, which count for
// nothing. Gives a byte that is not 0 where a character is not of the alphabet; then what was
// written means nothing.
ZQV_LOOKS_UP inline WideBytes DecodeBlock(const char* in, char* out) {
  const WideBytes c = LoadWideBytes(in);
  const WideBytes upper = UpperHalves(c);
  const WideBytes strange =
      LookUp(TableOf(kHalves.upper), upper) & LookUp(TableOf(kHalves.lower), c & 0x0F);
  const WideBytes values = c + LookUp(TableOf(kHalves.shift), upper + (c == '/'));
  StoreWideBytes(JoinTwelves(LookUp(JoinSixBits(values), TableOf(kByteOrder))), out);
  return strange;
}

// Lines of `length` characters, a block at the least, each with a line end behind it; up to one
// that holds another character. A line's last block begins within the one before, where the length
// asks for it, and gives the same bytes again.
ZQV_LOOKS_UP Places DecodeLines(Places places, const char* end, std::size_t length) {
  const std::size_t last = length - kWideBytes;
  while (static_cast<std::size_t>(end - places.at) > length && base::IsLineEnd(places.at[length])) {
    WideBytes strange = {};
    std::size_t block = 0;
    while (true) {
      strange |= DecodeBlock(places.at + block, places.out + block / 4 * 3);
      if (block == last) break;
      block = std::min(block + kWideBytes, last);
    }
    if (!IsAllZero(strange)) break;
    places.at = std::find_if_not(places.at + length, end, base::IsLineEnd);
    places.out += length / 4 * 3;
  }
  return places;
}

class Base64Decoder {
 public:
  Base64Decoder(std::string_view text, char* out)
      : begin_(text.data()),
        at_(begin_),
        end_(begin_ + text.size()),
        out_(out),
        can_look_up_(CanLookUp()) {}

  // The end of what was decoded.
  char* Run() {
    while (at_ != end_) {
      if (can_look_up_ && IsAtLineStart()) ReadLines();
      for (std::uint32_t bits = 0; IsRegular(bits); at_ += kGroup) Put(bits, 3);
      at_ = std::find_if_not(at_, end_, [](char c) { return SixBits(c) == kStranger; });
      std::uint32_t bits = 0;
      if (!IsRegular(bits)) ReadGroup();
    }
    return out_;
  }

 private:
  static constexpr std::ptrdiff_t kGroup = 4;

  // Only there is a line looked for: looked for everywhere, junk without line ends would cost a
  // thousand times as much.
  bool IsAtLineStart() const { return at_ == begin_ || base::IsLineEnd(at_[-1]); }

  // Lines of one length that hold nothing but the alphabet.
  void ReadLines() {
    constexpr std::ptrdiff_t kLongest = 1024;
    const char* const longest = end_ - at_ > kLongest ? at_ + kLongest : end_;
    const char* const line_end =
        std::find_if(at_, longest, [](char c) { return base::IsLineEnd(c); });
    const auto length = static_cast<std::size_t>(line_end - at_);
    if (line_end == longest || length < kWideBytes || length % kGroup != 0) return;
    const Places rest = DecodeLines({at_, out_}, end_, length);
    at_ = rest.at;
    out_ = rest.out;
  }

  // Whether the next four characters are all of the alphabet; then what they give.
  bool IsRegular(std::uint32_t& bits) const {
    if (end_ - at_ < kGroup) return false;
    const std::uint32_t a = SixBits(at_[0]);
    const std::uint32_t b = SixBits(at_[1]);
    const std::uint32_t c = SixBits(at_[2]);
    const std::uint32_t d = SixBits(at_[3]);
    bits = a << 18U | b << 12U | c << 6U | d;
    return (a | b | c | d) < kEquals;
  }

  // The next four characters that count, or as many as there are.
  void ReadGroup() {
    std::uint32_t bits = 0;
    std::size_t known = 0;  // of the bits, from the left
    bool has_ended = false;
    for (std::size_t read = 0; at_ != end_ && read < kGroup; ++at_) {
      const std::uint32_t value = SixBits(*at_);
      if (value == kStranger) continue;
      ++read;
      has_ended = has_ended || (value == kEquals && read > 2);
      if (has_ended) continue;
      bits |= (value == kEquals ? kEqualsAsValue : value) << (24 - 6 * read);
      known += 6;
    }
    Put(bits, known / 8);
  }

  // The first `count` of three bytes.
  void Put(std::uint32_t bits, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) *out_++ = static_cast<char>(bits >> (16 - 8 * i));
  }

  const char* const begin_;
  const char* at_;
  const char* const end_;
  char* out_;
  const bool can_look_up_;
};

// What ends a run of characters that stay: "=" and control characters but the tab.
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
  static Bytes16 EndRun(Bytes16 c) {
    const Bytes16 are_controls = (c & ~(' ' - 1)) == 0;
    return (c == '=') | (are_controls & (c != '\t'));
  }

  // What ends runs is found for 64 characters at once and then visited, so that the processor need
  // not guess each run's length. Stops at what is no code, soft break or line end of the usual
  // kind, and near the end of the text. What such a code or break ends in is never a blank, so that
  // blanks before a line end may be looked for from where this began.
  void ReadRegular() {
    Places places{at_, out_};
    bool is_regular = true;
    while (is_regular && end_ - places.at >= 2 * kBytes64) {
      const char* const block = places.at;
      std::uint64_t ends = base::BitsOf64(block, EndRun);
      for (; is_regular && ends != 0; ends &= ends - 1) {
        const char* const end = block + __builtin_ctzll(ends);
        if (end < places.at) continue;  // taken with the one before
        KeepShort(end, places);
        is_regular = ReadRegularEnd(places);
      }
      if (is_regular && places.at < block + kBytes64) KeepShort(block + kBytes64, places);
    }
    at_ = places.at;
    out_ = places.out;
  }

  // "=" and two digits, "=" and CRLF, or CRLF without blanks before it; false, with nothing taken,
  // when it is none of them.
  bool ReadRegularEnd(Places& places) const {
    const char* const at = places.at;
    if (*at == '=') {
      const int byte = ByteAt(at);
      if (byte >= 0) {
        *places.out++ = static_cast<char>(byte);
      } else if (at[1] != '\r' || at[2] != '\n') {
        return false;
      }
      places.at += 3;
      return true;
    }
    if (at[0] != '\r' || at[1] != '\n' || (at != run_ && base::IsBlank(at[-1]))) return false;
    *places.out++ = '\n';
    places.at += 2;
    return true;
  }

  // Keeps 64 characters at the most, and may write as many whatever their number.
  static void KeepShort(const char* end, Places& places) {
    const auto copy = [&places](std::size_t block) {
      StoreBytes16(LoadBytes16(places.at + block * kBytes16), places.out + block * kBytes16);
    };
    const std::ptrdiff_t length = end - places.at;
    copy(0);
    copy(1);
    if (length > 2 * static_cast<std::ptrdiff_t>(kBytes16)) {
      copy(2);
      copy(3);
    }
    places.at = end;
    places.out += length;
  }

  void Keep(const char* end) {
    out_ = std::copy(at_, end, out_);
    at_ = end;
  }

  const char* BlanksEnd(const char* at) const {
    while (at != end_ && base::IsBlank(*at)) ++at;
    return at;
  }

  // Two different ones belong together.
  void TakeLineEnd() {
    const char first = *at_++;
    if (at_ != end_ && base::IsLineEnd(*at_) && *at_ != first) ++at_;
  }

  // The rest of the text, blanks or the start of a code.
  void TakeUndecided() {
    *out_++ = '=';
    if (end_ - at_ > 1 && at_[1] == '\t') *out_++ = '\t';
    at_ = end_;
  }

  // Keeps all up to what ends the run.
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

  // The end of a line or of the text, after a run of characters. Blanks before it go, and then only
  // the line end's first character.
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
      KeepNoByte();
    }
  }

  // The value of the two digits behind "="; negative when they are something else.
  static int ByteAt(const char* at) { return DigitValue(at[1]) * 16 | DigitValue(at[2]); }

  // "=" and two digits; false when it is something else.
  bool ReadByte() {
    const int byte = ByteAt(at_);
    if (byte < 0) return false;
    *out_++ = static_cast<char>(byte);
    at_ += 3;
    return true;
  }

  // "=" and a character that is neither a blank nor a line end, which is no byte: it stays, with
  // another after a digit.
  void KeepNoByte() {
    const bool has_digit = DigitValue(at_[1]) >= 0 && end_ - at_ > 2;
    Keep(at_ + (has_digit ? 3 : 2));
  }

  static constexpr std::ptrdiff_t kBytes64 = 64;

  const char* at_;
  const char* end_;
  const char* run_;  // where the run of characters that stay began
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
