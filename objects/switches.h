// The two shared properties of MimeEmailZQV: process-wide switches, both off at load. Any thread
// may change them at any time; a message that is being constructed sees the change at its next
// step.
#pragma once

#include "abi/records.h"

namespace zqv::objects {

// Whether an unknown charset raises an exception.
bool RaisesUnknownFormats();

// Registered with the host; any non-zero value is true. Turning the debug log on writes a line.
abi::RBBoolean getRaiseUnknownFormatExceptions();
void setRaiseUnknownFormatExceptions(abi::RBBoolean value);
abi::RBBoolean getDebugging();
void setDebugging(abi::RBBoolean value);

}  // namespace zqv::objects
