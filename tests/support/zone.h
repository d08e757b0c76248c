// The time zone of a machine, as the environment says it.
#pragma once

#include <cstdlib>

namespace zqv::test {

// For this process and those it starts from now on. On Windows for the latter alone: there a process
// learns its zone when it starts.
inline void SetZone(const char* zone) {
#if defined(_WIN32)
  static_cast<void>(_putenv_s("TZ", zone));
#else
  setenv("TZ", zone, 1);
#endif
}

}  // namespace zqv::test
