// Large memory pages for big buffers. A buffer that is filled once from start to end costs more in
// page faults of 4 KB pages than in filling it.
#pragma once

#include <cstddef>

namespace zqv::base {

// Asks the system to use large pages for the buffer, without reading or writing it. `size` is in
// bytes. Does nothing for buffers below 4 MB and on systems other than Linux. Never fails.
void PreferLargePages(char* bytes, std::size_t size);

}  // namespace zqv::base
