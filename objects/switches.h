// The two shared properties of MimeEmailZQV, which are switches for the whole process. Both are off
// when the library is loaded. Any thread may change them at any time; a change affects messages
// that other threads are constructing at that moment.
#pragma once

#include "abi/records.h"

namespace zqv::objects {

// Whether RaiseUnknownFormatExceptions is on: an unknown charset then raises an exception.
bool RaisesUnknownFormats();

// Getters and setters, registered with the host. Setters take any nonzero value as true. Turning
// the debug log on writes a first line to it.
abi::RBBoolean getRaiseUnknownFormatExceptions();
void setRaiseUnknownFormatExceptions(abi::RBBoolean value);
abi::RBBoolean getDebugging();
void setDebugging(abi::RBBoolean value);

}  // namespace zqv::objects
