// Reference implementation of the decoders of base64 and quoted-printable.
#pragma once

#include <string>
#include <string_view>

namespace zqv::reference {

// Skips characters that are neither in the alphabet nor "=". Each group of four characters has six
// bits a character and gives three bytes. "=" in the third or fourth place ends the group there; in
// the first or second place it has the value 100, of which the low six bits are used. An incomplete
// group at the end gives as many whole bytes as its bits contain.
std::string DecodeBase64(std::string_view text);

// Decodes from left to right:
// - "=" with two hexadecimal digits gives one byte.
// - "=" with any blanks and a line end gives nothing. Blanks after "=" without a line end are kept,
//   and so is the "=".
// - Any other "=" is kept, with a digit if one follows, and with the next character, whatever it
// is:
//   another "=", a control character or, after a digit, a blank or a line end.
// - Blanks before a CR or LF are dropped together with that one character. Other blanks are kept.
// - Each CRLF, LFCR, CR and LF gives one LF. Other control characters give nothing.
// - At the end of the text an incomplete sequence gives "=", with a tab if its second character is
// a
//   tab. Such sequences are blanks; and "=", with or without blanks after it, and with or without a
//   single CR or LF after those.
std::string DecodeQuotedPrintable(std::string_view text);

}  // namespace zqv::reference
