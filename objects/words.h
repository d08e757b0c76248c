// Header text and HTML as host strings, and the exceptions for charsets that nobody knows.
#pragma once

#include <string_view>

#include "abi/records.h"
#include "host/ref.h"
#include "text/encoded_word.h"

namespace zqv::objects {

// Raises an UnsupportedFormatException when `charset` is not empty and the shared property
// RaiseUnknownFormatExceptions is on; the caller goes on.
void ReportUnknownCharset(std::string_view charset);

// The host string of a header text [new lock], nil for an empty one. Reports an unknown charset.
host::StringRef BuildHeaderText(const text::HeaderText& text);

// The text with its encoded words decoded [new lock]; nil for an empty one. With `unquote`,
// surrounding quotes go. Reports an unknown charset, of which the text stays undecoded.
host::StringRef DecodeInlineEncodings(std::string_view text, bool unquote);

// Registered with the host: the same for a host string, and the plain text of an HTML text. The
// texts [borrowed] may be nil; the results carry one lock for the application, and are nil when
// nothing is left.
abi::REALstring DecodeInline(abi::REALstring text);
abi::REALstring HTMLToPlainText(abi::REALstring html);

// The plain text of an HTML text [new lock]; nil when nothing is left.
host::StringRef NewPlainText(abi::REALstring html);

}  // namespace zqv::objects
