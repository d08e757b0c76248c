// Header text that may hold RFC 2047 encoded words, as bytes and the encoding that they are in.
//
// The decoder is deliberately simple: the bytes of all encoded words and of the plain text between
// them become one byte string, in the charset that the last word names.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "abi/encodings.h"
#include "text/transfer_codes.h"

namespace zqv::text {

// Bytes, either held or borrowed from the text that they were made of, and what they are encoded
// in.
class HeaderText {
 public:
  HeaderText() = default;  // empty
  // `bytes` up to their first NUL, which must outlive this unless `owned` holds them.
  HeaderText(std::string_view bytes, abi::Encoding encoding, DecodedBytes owned = {})
      : owned_(std::move(owned)), bytes_(bytes.substr(0, bytes.find('\0'))), encoding_(encoding) {}

  std::string_view bytes() const { return bytes_; }
  abi::Encoding encoding() const { return encoding_; }

  // For those who report it: the charset that the text names when it is not in the table, and the
  // one that its encoded words name when that has no encoding; the bytes are then undecoded.
  // Otherwise empty.
  std::string unknown_charset;
  std::string charset_without_encoding;

 private:
  DecodedBytes owned_;
  std::string_view bytes_;
  abi::Encoding encoding_ = abi::kAscii;
};

// `text` up to its first NUL, undecoded, in the encoding that base::DetectEncoding finds. Borrows.
HeaderText DetectText(std::string_view text);

// `text` up to its first NUL, undecoded, in the given encoding. Borrows.
HeaderText LabelText(std::string_view text, abi::Encoding encoding);

// `text` with its encoded words decoded. With `unquote`, surrounding quotes go (see RemoveQuotes).
// Borrows `text` when there is nothing to decode.
HeaderText DecodeEncodedWords(std::string_view text, bool unquote);

}  // namespace zqv::text
