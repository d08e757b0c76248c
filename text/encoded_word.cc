// One forward pass copies plain text and decodes each word (RFC 2047, section 2):
//
//   Re: =?utf-8?Q?Caf=C3=A9?= x    bytes "Re: Caf\xC3\xA9 x", charset "utf-8"
//       |  |    | |         |
//       |  name | payload   closing "?="
//       "=?"    letter: B is base64, Q is similar to quoted-printable
//
// Malformed words are decoded, too: each part ends at the next "?" or at the end of the text, and
// the character after the last "?" is dropped, whatever it is.
#include "text/encoded_word.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/ascii.h"
#include "base/log.h"
#include "base/unicode.h"
#include "text/charset.h"
#include "text/quotes.h"

namespace zqv::text {
namespace {

constexpr std::size_t kShortestEncodedWord = 7;  // bytes in "=?c?Q?="

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

// The value of a hexadecimal digit; 0 for any other character.
int HexValue(char c) { return std::max(base::HexadecimalValue(c), 0); }

// Decodes the "Q" encoding (RFC 2047, section 4.2): "=41" is one byte, "_" a space. Writes at most
// payload.size() bytes to `out` and returns the end of what it wrote.
char* DecodeQ(std::string_view payload, char* out) {
  for (std::size_t i = 0; i < payload.size(); ++i) {
    if (payload[i] == '=') {
      // When the payload ends within a code, the missing digits count as 0.
      const int high = i + 1 < payload.size() ? HexValue(payload[i + 1]) : 0;
      const int low = i + 2 < payload.size() ? HexValue(payload[i + 2]) : 0;
      *out++ = static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      *out++ = payload[i] == '_' ? ' ' : payload[i];
    }
  }
  return out;
}

// Decodes the encoded words of a header text without NULs into a buffer, and copies the text
// between them. The output is never longer than the input.
class EncodedWordScanner {
 public:
  explicit EncodedWordScanner(std::string_view text)
      : text_(text), decoded_(text.size() + kBase64Slack), out_(decoded_.data()) {}

  void Run() {
    while (at_ < text_.size()) {
      const std::size_t word = std::min(text_.find(kWordStart, at_), text_.size());
      Append(text_.substr(at_, word - at_));
      at_ = word;
      if (at_ < text_.size()) ReadWord();
    }
    decoded_.EndAt(out_);
  }

  DecodedBytes& decoded() { return decoded_; }
  std::string_view charset() const { return charset_; }

 private:
  // The character `ahead` bytes after the current one; NUL beyond the end.
  char Peek(std::size_t ahead) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }

  void Append(std::string_view text) { out_ = std::copy(text.begin(), text.end(), out_); }

  // Reads up to the next "?" or the end of the text, and consumes the "?".
  std::string_view ReadField() {
    const std::size_t end = std::min(text_.find('?', at_), text_.size());
    const std::string_view field = text_.substr(at_, end - at_);
    at_ = std::min(end + 1, text_.size());
    return field;
  }

  void ReadWord() {
    at_ += kWordStart.size();
    const std::string_view name = ReadField();
    const char letter = Peek(0);
    at_ = std::min(at_ + 1, text_.size());
    if (Peek(0) == '?') ++at_;
    const std::string_view payload = ReadField();
    SkipEnd();
    // QUIRK: after a lower-case "b" or "q" the payload is copied undecoded, although RFC 2047,
    // section 2, ignores the letter's case. Part of the interface's contract; changing it is a
    // major version. Test: EncodedWords.LowerCaseLettersAreNotDecoded.
    if (letter == 'B') {
      out_ = DecodeBase64(payload, out_);
    } else if (letter == 'Q') {
      out_ = DecodeQ(payload, out_);
    } else {
      Append(payload);
    }
    if (!name.empty()) charset_ = name;
  }

  // Skips the character after the closing "?" and, if another word seems to follow, one space.
  void SkipEnd() {
    if (at_ >= text_.size()) return;
    const char closing = text_[at_++];
    // QUIRK: RFC 2047, section 6.2, drops all white space between two encoded words; here it is one
    // space, and an "=" after it counts as another word. Part of the interface's contract; changing
    // it is a major version. Test: EncodedWords.OnlyASingleSpaceBetweenWordsIsDropped.
    if (closing == '=' && Peek(0) == ' ' && Peek(1) == '=') {
      ZQV_LOG("Skip extra space");
      ++at_;
    }
  }

  static constexpr std::string_view kWordStart = "=?";

  std::string_view text_;
  std::size_t at_ = 0;
  DecodedBytes decoded_;
  char* out_;
  std::string_view charset_;  // of the last word whose charset is not empty
};

// Logs `shown`, a part of `all`, when `all` is labelled ASCII and is not.
void LogUnlessAscii(std::string_view all, std::string_view shown) {
  if (shown.empty() || base::IsAscii(all)) return;
  ZQV_LOG("Error: text is not ascii %s", std::string(shown).c_str());
}

HeaderText Undecoded(std::string_view text, bool unquote) {
  return DetectText(unquote ? RemoveQuotes(text) : text);
}

}  // namespace

HeaderText DetectText(std::string_view text) {
  const std::string_view shown = UpToNul(text);
  return {shown, base::DetectEncoding(shown)};
}

HeaderText LabelText(std::string_view text, abi::Encoding encoding) {
  if (encoding == abi::kAscii) LogUnlessAscii(text, UpToNul(text));
  return {text, encoding};
}

HeaderText DecodeEncodedWords(std::string_view text, bool unquote) {
  const bool has_word = text.size() >= kShortestEncodedWord && text.find("=?") != text.npos;
  if (!has_word) return Undecoded(text, unquote);
  EncodedWordScanner scanner(UpToNul(text));
  scanner.Run();
  if (scanner.charset().empty()) return Undecoded(text, unquote);
  const std::optional<abi::Encoding> found = FindCharset(scanner.charset());
  const abi::Encoding encoding = found.value_or(abi::kUnknownEncoding);
  if (encoding == abi::kUnknownEncoding) {
    const std::string charset(scanner.charset());
    ZQV_LOG("unhandled encoding %s", charset.c_str());
    HeaderText undecoded = Undecoded(text, unquote);
    if (!found.has_value()) undecoded.unknown_charset = charset;
    undecoded.charset_without_encoding = charset;
    return undecoded;
  }
  std::string_view decoded = scanner.decoded().view();
  if (unquote) decoded = RemoveQuotes(decoded);
  if (encoding == abi::kAscii) LogUnlessAscii(decoded, UpToNul(decoded));
  return {decoded, encoding, std::move(scanner.decoded())};
}

}  // namespace zqv::text
