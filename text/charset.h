// From a charset's name, as a message gives it, to the host's text-encoding number.
#pragma once

#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "abi/records.h"

namespace zqv::text {

// The class-wide switch of the shared property: whether an unknown charset raises an exception.
// False at load.
extern bool RaiseUnknownFormatExceptions;
abi::RBBoolean getRaiseUnknownFormatExceptions();
void setRaiseUnknownFormatExceptions(abi::RBBoolean value);

// The encoding of a charset name, which is compared without its case, blanks, quotes, "-", "." and
// "_". kUnknownEncoding for a name that is in no table; then, if the switch is on, also raises an
// UnsupportedFormatException, and the caller goes on.
abi::Encoding GetEncodingValue(const std::string& charset_name);

// The name as the table knows it: without bytes outside printable ASCII, blanks and punctuation,
// and cut at a closing double quote.
std::string NormaliseCharsetName(std::string_view name);

}  // namespace zqv::text
