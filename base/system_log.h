// Where the platform's log is.
#pragma once

namespace zqv::base {

// Writes one line, adding the line break, to the system log (macOS), to the debugger (Windows) or
// to standard error (elsewhere). The text is cut after 4095 bytes at the latest. Failures are
// ignored.
void WriteLogLine(const char* text) noexcept;

}  // namespace zqv::base
