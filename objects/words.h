// Creates host strings from header texts and from HTML, and raises exceptions for unknown charsets.
#pragma once

#include <string_view>

#include "abi/records.h"
#include "host/ref.h"
#include "text/encoded_word.h"

namespace zqv::objects {

// Raises an UnsupportedFormatException when `charset`, the name of an unknown charset, is not empty
// and the shared property RaiseUnknownFormatExceptions is on. Returns in any case.
void ReportUnknownCharset(std::string_view charset);

// Creates a host string from a header text; nil for an empty one. Calls ReportUnknownCharset.
// [new lock]
host::StringRef BuildHeaderText(const text::HeaderText& text);

// Creates a host string from `text` with its encoded words decoded, and with `unquote` also without
// surrounding quotes (text::DecodeEncodedWords). Nil for an empty result. Calls
// ReportUnknownCharset. [new lock]
host::StringRef DecodeInlineEncodings(std::string_view text, bool unquote);

// Shared methods, registered with the host: decode encoded words, and convert HTML to plain text.
// The arguments [borrowed] may be nil; an empty result is nil. [new lock for the application]
abi::REALstring DecodeInline(abi::REALstring text);
abi::REALstring HTMLToPlainText(abi::REALstring html);

// Converts HTML [borrowed; may be nil] to plain text; nil for an empty result. [new lock]
host::StringRef NewPlainText(abi::REALstring html);

}  // namespace zqv::objects
