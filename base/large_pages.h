// Large pages, for memory that is about to be filled from its start to its end: getting small ones
// takes longer than filling them.
#pragma once

#include <cstddef>

namespace zqv::base {

// Asks the system for large pages where there is room for some of them, without touching the
// bytes. Does nothing where the system has none.
void PreferLargePages(char* bytes, std::size_t size);

}  // namespace zqv::base
