// Cleans up what the C++ runtime leaves behind when a process unloads the library.
#pragma once

namespace zqv::plugin {

#if defined(_WIN32)
// Prevents a leak of thread-local storage slots at unloading (unloading_windows.cc). Call it at the
// start of REALPluginMain.
void PrepareForUnloading() noexcept;
#else
// Does nothing: other systems free the thread-local storage of a library when it is unloaded.
inline void PrepareForUnloading() noexcept {}
#endif

}  // namespace zqv::plugin
