// The one way in which the stand-in host ends on misuse.
#pragma once

#include <string>

namespace zqv::standin {

// Writes "stand-in host: <message>" to standard error and aborts the process.
[[noreturn]] void Fatal(const std::string& message);

}  // namespace zqv::standin
