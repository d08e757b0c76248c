#include "text/transfer_codes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "text/ascii.h"

namespace zqv::text {
namespace {

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

class Base64Decoder {
 public:
  explicit Base64Decoder(std::string_view text)
      : at_(text.data()), end_(text.data() + text.size()), decoded_(text.size() / 4 * 3 + 3, '\0') {
    out_ = decoded_.data();
  }

  std::string Run() {
    while (at_ != end_) {
      for (std::uint32_t bits = 0; IsRegular(bits); at_ += kGroup) Put(bits, 3);
      at_ = std::find_if_not(at_, end_, [](char c) { return SixBits(c) == kStranger; });
      std::uint32_t bits = 0;
      if (!IsRegular(bits)) ReadGroup();
    }
    decoded_.resize(static_cast<std::size_t>(out_ - decoded_.data()));
    return std::move(decoded_);
  }

 private:
  static constexpr std::ptrdiff_t kGroup = 4;

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

  const char* at_;
  const char* end_;
  std::string decoded_;
  char* out_;
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

class QuotedPrintableDecoder {
 public:
  explicit QuotedPrintableDecoder(std::string_view text)
      : at_(text.data()), end_(text.data() + text.size()), decoded_(text.size(), '\0') {
    out_ = decoded_.data();
  }

  std::string Run() {
    while (at_ != end_) {
      if (!EndsRun(*at_)) {
        ReadRun();
      } else if (*at_ == '=') {
        ReadEquals();
      } else if (IsLineEnd(*at_)) {
        TakeLineEnd();
        *out_++ = '\n';
      } else {
        ++at_;
      }
    }
    decoded_.resize(static_cast<std::size_t>(out_ - decoded_.data()));
    return std::move(decoded_);
  }

 private:
  void Keep(const char* end) {
    out_ = std::copy(at_, end, out_);
    at_ = end;
  }

  const char* BlanksEnd(const char* at) const { return std::find_if_not(at, end_, IsBlank); }

  // Two different ones belong together.
  void TakeLineEnd() {
    const char first = *at_++;
    if (at_ != end_ && IsLineEnd(*at_) && *at_ != first) ++at_;
  }

  // The rest of the text, blanks or the start of a code.
  void TakeUndecided() {
    *out_++ = '=';
    if (end_ - at_ > 1 && at_[1] == '\t') *out_++ = '\t';
    at_ = end_;
  }

  // Up to what ends it, with the line end's first character when blanks stand before that.
  void ReadRun() {
    const char* run_end = at_;
    while (run_end != end_ && !EndsRun(*run_end)) ++run_end;
    const char* blanks = run_end;
    while (blanks != at_ && IsBlank(blanks[-1])) --blanks;
    const bool ends_text = run_end == end_;
    if (blanks == run_end || !(ends_text || IsLineEnd(*run_end))) {
      Keep(run_end);
      return;
    }
    Keep(blanks);
    if (ends_text) {
      TakeUndecided();
    } else {
      at_ = run_end + 1;
    }
  }

  void ReadEquals() {
    const char* const rest = BlanksEnd(at_ + 1);
    if (rest == end_ || (IsLineEnd(*rest) && rest + 1 == end_)) {
      TakeUndecided();
    } else if (IsLineEnd(*rest)) {
      at_ = rest;
      TakeLineEnd();
    } else if (rest != at_ + 1) {
      Keep(rest);
    } else {
      ReadCode();
    }
  }

  // "=" and a character that is neither a blank nor a line end.
  void ReadCode() {
    const int high = HexadecimalValue(at_[1]);
    if (high < 0) return Keep(at_ + 2);
    if (end_ - at_ == 2) return Keep(end_);
    const int low = HexadecimalValue(at_[2]);
    if (low < 0) return Keep(at_ + 3);
    *out_++ = static_cast<char>(high * 16 + low);
    at_ += 3;
  }

  const char* at_;
  const char* end_;
  std::string decoded_;
  char* out_;
};

}  // namespace

std::string DecodeBase64(std::string_view text) { return Base64Decoder(text).Run(); }

std::string DecodeQuotedPrintable(std::string_view text) {
  return QuotedPrintableDecoder(text).Run();
}

}  // namespace zqv::text
