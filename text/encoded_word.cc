#include "text/encoded_word.h"

#include <algorithm>
#include <string_view>

#include "host/errors.h"
#include "host/log.h"
#include "host/strings.h"
#include "host/text_reader.h"
#include "host/unicode.h"
#include "text/ascii.h"
#include "text/charset.h"
#include "text/quotes.h"
#include "text/transfer_codes.h"

namespace zqv::text {
namespace {

constexpr std::size_t kShortestEncodedWord = 7;  // =?c?Q?=

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

// Of what is no digit, 0.
int HexValue(char c) { return std::max(HexadecimalValue(c), 0); }

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
    // QUIRK: lower-case letters delimit a word whose text is then not decoded. Applications rely
    // on the asymmetry. Test: EncodedWords.LowerCaseLettersAreNotDecoded.
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

host::StringRef BuildPlain(const std::string& text, bool unquote) {
  if (!unquote) return host::CString2RB_detect_encoding(text);
  return host::CString2RB_detect_encoding(RemoveQuotes(text));
}

host::StringRef BuildDecoded(std::string&& decoded, abi::Encoding encoding, bool unquote) {
  if (unquote) decoded = RemoveQuotes(std::move(decoded));
  const std::string_view text = UpToNul(decoded);
  if (encoding == abi::kAscii && !host::IsAscii(text))
    ZQV_LOG("%s%s %s", "Error: text is not ascii", decoded.c_str());
  return host::BuildString(text, encoding);
}

}  // namespace

host::StringRef DecodeInlineEncodings(const std::string& text, bool unquote) {
  if (text.empty()) return {};
  const bool has_word = text.size() >= kShortestEncodedWord && text.find("=?") != text.npos;
  if (!has_word) return BuildPlain(text, unquote);
  EncodedWordScanner scanner(UpToNul(text));
  scanner.Run();
  if (scanner.charset().empty()) return BuildPlain(text, unquote);
  const abi::Encoding encoding = GetEncodingValue(scanner.charset());
  if (encoding != abi::kUnknownEncoding)
    return BuildDecoded(std::move(scanner.decoded()), encoding, unquote);
  ZQV_LOG("%s%s %s", "unhandled encoding", scanner.charset().c_str());
  if (RaiseUnknownFormatExceptions) {
    host::RaiseException(host::kUnsupportedFormatException,
                         ("Unhandled encoding: " + scanner.charset()).c_str());
  }
  return BuildPlain(text, unquote);
}

host::StringRef DecodeInline(abi::REALstring text) {
  return text != nullptr ? DecodeInlineEncodings(host::ReadUtf8(text), false) : host::StringRef();
}

}  // namespace zqv::text
