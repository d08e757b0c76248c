// Calls functions of the plug-in whose parameter types are known at run time only, from the text of
// a declaration.
//
// Integers, Booleans and references are passed in integer registers, doubles in floating-point
// registers. Each kind fills its registers in its own order. So every call passes six integers and
// two doubles: under the supported calling conventions a function ignores the registers that it
// does not declare.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "abi/records.h"

namespace zqv::standin {

// The argument registers of one call. Each kind is filled from the first register on.
struct CallArguments {
  std::array<std::int64_t, 6> integers{};
  std::array<double, 2> doubles{};
  std::size_t integer_count = 0;
  std::size_t double_count = 0;

  // Fatal when all registers of that kind are in use.
  void Add(std::int64_t value);
  void Add(const void* reference) { Add(reinterpret_cast<std::int64_t>(reference)); }
  void AddDouble(double value);
};

// Call `function`; there is one of these for each type of result. Fatal when `function` is null or
// throws a C++ exception. `what` names the function in the message.
void CallNothing(abi::REALproc function, const CallArguments& arguments, const std::string& what);
std::int64_t CallInteger(abi::REALproc function, const CallArguments& arguments,
                         const std::string& what);
bool CallBoolean(abi::REALproc function, const CallArguments& arguments, const std::string& what);
double CallDouble(abi::REALproc function, const CallArguments& arguments, const std::string& what);

// Notified whenever a thread enters code of the plug-in or leaves it for code of the host.
using SideObserver = void (*)(bool in_plugin);

namespace internal {
inline thread_local bool in_plugin = false;
inline SideObserver g_side_observer = nullptr;
}  // namespace internal

// For measurements: sets the observer, or removes it when null. No other thread may run the plug-in
// meanwhile.
inline void ObserveSides(SideObserver observer) { internal::g_side_observer = observer; }

// Whether this thread runs code of the plug-in now. False inside an entry point that the plug-in
// called. Tests that make allocations fail use it to let the host's own allocations succeed.
inline bool InPlugin() { return internal::in_plugin; }

// Sets the result of InPlugin for this thread, and restores it at the end.
class PluginScope {
 public:
  explicit PluginScope(bool now_in_plugin) : before_(internal::in_plugin) { Set(now_in_plugin); }
  ~PluginScope() { Set(before_); }
  PluginScope(const PluginScope&) = delete;
  PluginScope& operator=(const PluginScope&) = delete;

 private:
  static void Set(bool in_plugin) noexcept {
    if (internal::g_side_observer != nullptr && in_plugin != internal::in_plugin) {
      internal::g_side_observer(in_plugin);
    }
    internal::in_plugin = in_plugin;
  }

  const bool before_;
};

}  // namespace zqv::standin
