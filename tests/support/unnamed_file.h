// A file without a name, for what a process writes and a test reads.
#pragma once

#include <string>

namespace zqv::test {

// Opens an empty one for reading and writing; the descriptor is the caller's. Children that run
// another program do not inherit it. Negative on failure.
int OpenUnnamedFile();

// All that was written to a file so far; its position stays at the end.
std::string TextOfFile(int descriptor);

}  // namespace zqv::test
