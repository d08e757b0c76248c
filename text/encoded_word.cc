#include "text/encoded_word.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/ascii.h"
#include "base/log.h"
#include "base/unicode.h"
#include "text/charset.h"
#include "text/quotes.h"
#include "text/transfer_codes.h"

namespace zqv::text {
namespace {

constexpr std::size_t kShortestEncodedWord = 7;  // =?c?Q?=

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

// Of what is no digit, 0.
int HexValue(char c) { return std::max(base::HexadecimalValue(c), 0); }

void AppendQ(std::string_view payload, std::string& out) {
  for (std::size_t i = 0; i < payload.size(); ++i) {
    if (payload[i] == '=') {
      // Digits that are missing at the end count as 0.
      const int high = i + 1 < payload.size() ? HexValue(payload[i + 1]) : 0;
      const int low = i + 2 < payload.size() ? HexValue(payload[i + 2]) : 0;
      out += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      out += payload[i] == '_' ? ' ' : payload[i];
    }
  }
}

// One pass over a text without NULs.
class EncodedWordScanner {
 public:
  explicit EncodedWordScanner(std::string_view text) : text_(text) {
    decoded_.reserve(text.size() + 8);
  }

  void Run() {
    while (at_ < text_.size()) {
      if (Peek(0) == '=' && Peek(1) == '?') {
        ReadWord();
      } else {
        decoded_ += text_[at_++];
      }
    }
  }

  std::string& decoded() { return decoded_; }
  const std::string& charset() const { return charset_; }

 private:
  char Peek(std::size_t ahead) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }

  // The text up to the next "?", which is consumed too.
  std::string_view ReadField() {
    const std::size_t end = std::min(text_.find('?', at_), text_.size());
    const std::string_view field = text_.substr(at_, end - at_);
    at_ = std::min(end + 1, text_.size());
    return field;
  }

  void ReadWord() {
    at_ += 2;
    const std::string_view name = ReadField();
    const char letter = Peek(0);
    at_ = std::min(at_ + 1, text_.size());
    if (Peek(0) == '?') ++at_;
    const std::string_view payload = ReadField();
    SkipEnd();
    // QUIRK: lower-case letters delimit a word whose text is then not decoded. Part of the
    // interface's contract; changing it is a major version. Test:
    // EncodedWords.LowerCaseLettersAreNotDecoded.
    if (letter == 'B') {
      decoded_ += DecodeBase64(payload).view();
    } else if (letter == 'Q') {
      AppendQ(payload, decoded_);
    } else {
      decoded_ += payload;
    }
    if (!name.empty()) charset_ = name;
  }

  // The character after the closing "?", whatever it is, and the one space between two words.
  void SkipEnd() {
    if (at_ >= text_.size()) return;
    const char closing = text_[at_++];
    // QUIRK: one space, no tab or line break, and only an "=" is looked for behind it.
    // Test: EncodedWords.OnlyASingleSpaceBetweenWordsIsDropped.
    if (closing == '=' && Peek(0) == ' ' && Peek(1) == '=') {
      ZQV_LOG("%s%s", "Skip extra space");
      ++at_;
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::string decoded_;
  std::string charset_;  // of the last word that named one
};

void LogUnlessAscii(std::string_view all, std::string_view shown) {
  if (shown.empty() || base::IsAscii(all)) return;
  ZQV_LOG("%s%s %s", "Error: text is not ascii", std::string(shown).c_str());
}

HeaderText Undecoded(std::string_view text, bool unquote) {
  return DetectText(unquote ? RemoveQuotes(text) : text);
}

}  // namespace

std::string_view HeaderText::bytes() const { return UpToNul(is_owned_ ? owned_ : borrowed_); }

HeaderText DetectText(std::string_view text) {
  const std::string_view shown = UpToNul(text);
  return HeaderText::Borrow(shown, base::DetectEncoding(shown));
}

HeaderText LabelText(std::string_view text, abi::Encoding encoding) {
  if (encoding == abi::kAscii) LogUnlessAscii(text, UpToNul(text));
  return HeaderText::Borrow(text, encoding);
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
    ZQV_LOG("%s%s %s", "unhandled encoding", scanner.charset().c_str());
    HeaderText undecoded = Undecoded(text, unquote);
    if (!found.has_value()) undecoded.unknown_charset = scanner.charset();
    undecoded.charset_without_encoding = scanner.charset();
    return undecoded;
  }
  std::string decoded = std::move(scanner.decoded());
  if (unquote) decoded = std::string(RemoveQuotes(decoded));
  if (encoding == abi::kAscii) LogUnlessAscii(decoded, UpToNul(decoded));
  return {std::move(decoded), encoding};
}

}  // namespace zqv::text
