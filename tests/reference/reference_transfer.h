// Reference implementation of the decoders of base64 and quoted-printable.
#pragma once

#include <string>
#include <string_view>

namespace zqv::reference {

// Characters that are neither of the alphabet nor "=" are skipped. Each four of the others carry
// six bits each, which give three bytes. "=" in the third or fourth place ends the four there; in
// the first or second place it counts as 100, of which six bits count. Fewer than four at the end
// give the whole bytes they hold.
std::string DecodeBase64(std::string_view text);

// From left to right:
// - "=" with two hexadecimal digits is that byte.
// - "=", any blanks and a line end are nothing. Other blanks behind "=" stay, and so does "=".
// - Any other "=" stays, with a digit if one follows, and with the one character that does not fit:
//   that may be "=" or a control character, or behind a digit a blank or a line end.
// - Blanks before a CR or LF go, and that one character with them. Other blanks stay.
// - CRLF, LFCR, CR and LF are one LF each. Other control characters are nothing.
// - What the end of the text leaves undecided gives "=", and a tab if its second character is one:
//   blanks; "=" with or without blanks, and with or without a single CR or LF behind them.
std::string DecodeQuotedPrintable(std::string_view text);

}  // namespace zqv::reference
