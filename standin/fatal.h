// Ends the process when the plug-in, or the user of the stand-in host, makes a mistake. Comments
// call such a mistake fatal.
#pragma once

#include <string>

namespace zqv::standin {

// Writes "stand-in host: <message>" to standard error and aborts the process.
[[noreturn]] void Fatal(const std::string& message);

// Called when the host gets no memory for a thing; `creator` is the entry point that needed it.
// Calls Fatal, or the handler that was set, which must not return.
using OutOfMemoryHandler = void (*)(const std::string& creator);
void SetOutOfMemoryHandler(OutOfMemoryHandler handler);
[[noreturn]] void OutOfMemory(const std::string& creator);

}  // namespace zqv::standin
