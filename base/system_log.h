// Where the platform's log is.
#pragma once

namespace zqv::base {

// Writes one line, adding the line break, to the system log (macOS) or standard error (elsewhere).
// Failures are ignored.
void WriteLogLine(const char* text) noexcept;

}  // namespace zqv::base
