// RFC 2047 encoded words in header text.
//
// The decoder is deliberately simple: the bytes of all encoded words and of the plain text between
// them become one byte string, converted once, in the charset that the last word names.
#pragma once

#include <string>

#include "host/ref.h"

namespace zqv::text {

// The decoded text [new lock]; nil for an empty one. With `unquote`, surrounding quotes go (see
// RemoveQuotes). An unknown charset gives the text undecoded and, when the switch of
// text/charset.h is on, also raises an UnsupportedFormatException.
host::StringRef DecodeInlineEncodings(const std::string& text, bool unquote);

// The same for a host string [borrowed], which may be nil.
host::StringRef DecodeInline(abi::REALstring text);

}  // namespace zqv::text
