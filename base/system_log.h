// The platform's log, implemented once for each platform in system_log_*.cc.
#pragma once

namespace zqv::base {

// Writes `text`, which ends in a NUL, and a line break to the system log (macOS), to the debugger
// (Windows) or to standard error (Linux). The text may be cut after 4095 bytes. Failures to write
// are ignored.
void WriteLogLine(const char* text) noexcept;

}  // namespace zqv::base
