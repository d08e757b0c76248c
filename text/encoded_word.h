// Decodes header text that may contain encoded words (RFC 2047): =?charset?encoding?payload?=.
//
// The result is one byte string in one encoding: the decoded bytes of all words and the plain text
// between them, all read in the charset of the last word. Words in different charsets are not
// converted to a common one.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "abi/encodings.h"
#include "text/transfer_codes.h"

namespace zqv::text {

// The bytes of a header text and their encoding. The bytes are owned when they were decoded, and
// otherwise borrowed from the text.
class HeaderText {
 public:
  HeaderText() = default;  // an empty text, labelled ASCII
  // Takes `bytes` up to their first NUL. They lie in `owned`, or are borrowed when `owned` is
  // empty.
  HeaderText(std::string_view bytes, abi::Encoding encoding, DecodedBytes owned = {})
      : owned_(std::move(owned)), bytes_(bytes.substr(0, bytes.find('\0'))), encoding_(encoding) {}

  std::string_view bytes() const { return bytes_; }
  abi::Encoding encoding() const { return encoding_; }

  // Failures for the caller to report; empty when there are none. In both cases the bytes are the
  // undecoded text.
  std::string unknown_charset;           // a charset's name that is not in the table
  std::string charset_without_encoding;  // a name in encoded words that gives no encoding number

 private:
  DecodedBytes owned_;
  std::string_view bytes_;
  abi::Encoding encoding_ = abi::kAscii;
};

// Does not decode: `text` up to its first NUL, in the encoding that base::DetectEncoding guesses.
// [borrowed from `text`]
HeaderText DetectText(std::string_view text);

// Does not decode: `text` up to its first NUL, in the given encoding. [borrowed from `text`]
HeaderText LabelText(std::string_view text, abi::Encoding encoding);

// Decodes the encoded words in `text`. With `unquote`, RemoveQuotes is applied to the result.
// [borrowed from `text` when it has no encoded word or their charset is unknown; otherwise owned]
HeaderText DecodeEncodedWords(std::string_view text, bool unquote);

}  // namespace zqv::text
