// The one way in which the stand-in host ends on misuse.
#pragma once

#include <string>

namespace zqv::standin {

// Writes "stand-in host: <message>" to standard error and aborts the process.
[[noreturn]] void Fatal(const std::string& message);

// The end of a process whose host got no memory: Fatal, unless a program has set something else,
// which must not return.
using OutOfMemoryHandler = void (*)(const std::string& creator);
void SetOutOfMemoryHandler(OutOfMemoryHandler handler);
[[noreturn]] void OutOfMemory(const std::string& creator);

}  // namespace zqv::standin
