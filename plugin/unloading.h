// What a library has to give back when a process lets it go.
#pragma once

namespace zqv::plugin {

#if defined(_WIN32)
// Called once a host has called the library.
void PrepareForUnloading() noexcept;
#else
// Elsewhere the system sees to it.
inline void PrepareForUnloading() noexcept {}
#endif

}  // namespace zqv::plugin
