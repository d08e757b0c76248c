// The time zone of a machine, as the environment says it.
#pragma once

#include <cstdlib>
#include <string_view>

namespace zqv::test {

// Puts this process, and those that it starts, into a zone. A process for Windows has the zone that
// it was started with, which ZQV_ZONE names; it gives false for any other.
inline bool SetZone(const char* zone) {
#if defined(_WIN32)
  const char* const own = std::getenv("ZQV_ZONE");
  return own != nullptr && std::string_view(zone) == own;
#else
  return setenv("TZ", zone, 1) == 0;
#endif
}

}  // namespace zqv::test
