// What tests need to know about the build that they are part of.
#pragma once

namespace zqv::test {

// Whether the library is built as it ships, as release builds do. Debug and instrumented builds run
// at a tenth of the speed, and need more stack and memory.
#if !defined(NDEBUG) || defined(ZQV_INSTRUMENTED)
inline constexpr bool kShips = false;
#else
inline constexpr bool kShips = true;
#endif

}  // namespace zqv::test
