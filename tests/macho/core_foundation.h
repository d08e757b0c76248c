// As much of CoreFoundation and Foundation as the library calls: strings in the encodings it uses,
// file URLs, normalisation form D of Latin letters, and the log, which goes to standard error.
//
// Every object is booked: using one that is gone, or giving one back twice, ends the process.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::macho {

class VariadicPointers;

// Null for every other symbol.
void* FindCoreFoundationSymbol(const std::string& name);

// A path in form D, as the library must give it, in form C, as this system's files are named.
// macOS's file systems find a name in either.
std::string ComposedPath(const std::string& path);

// Objects that were made and not given back.
std::size_t LiveCoreFoundationObjects();

// NSLog: `format` is a constant string of the library's with %s and %@.
void WriteLog(const void* format, VariadicPointers arguments);

}  // namespace zqv::macho
