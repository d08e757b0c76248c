// Replaces the functions of CoreFoundation and Foundation that the library calls: strings in the
// encodings that it uses, file URLs, normalisation form D of Latin letters, and the log, which goes
// to standard error.
//
// Live objects are recorded. Using a freed object, or releasing one twice, ends the process.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::macho {

class VariadicPointers;

// The replacement of a symbol; null for any other symbol.
void* FindCoreFoundationSymbol(const std::string& name);

// Converts a path from form D, which the library must use on macOS, to form C, which the file names
// of this system have. macOS's file systems accept both forms.
std::string ComposedPath(const std::string& path);

// The number of objects that were created and not released.
std::size_t LiveCoreFoundationObjects();

// Replaces NSLog: `format` is a constant string of the library, with %s and %@.
void WriteLog(const void* format, VariadicPointers arguments);

}  // namespace zqv::macho
