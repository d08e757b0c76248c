// The time zone of a process, as its environment sets it.
#pragma once

#include <cstdlib>
#include <string_view>

namespace zqv::test {

// Sets the time zone of this process and of the processes that it starts; returns false when it
// cannot. A process on Windows keeps the zone in which it was started, which ZQV_ZONE names, so any
// other zone gives false.
inline bool SetZone(const char* zone) {
#if defined(_WIN32)
  const char* const own = std::getenv("ZQV_ZONE");
  return own != nullptr && std::string_view(zone) == own;
#else
  return setenv("TZ", zone, 1) == 0;
#endif
}

}  // namespace zqv::test
