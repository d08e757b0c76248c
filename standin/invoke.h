// Calls of plug-in functions whose types are known only from a declaration text.
//
// Integers, Booleans and references travel in the integer registers, doubles in the floating-point
// ones, each kind in its own order. So every call passes six integers and two doubles: registers
// that a function does not declare do no harm under the calling conventions used here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "abi/records.h"

namespace zqv::standin {

// The registers of one call, filled from the left.
struct CallArguments {
  std::array<std::int64_t, 6> integers{};
  std::array<double, 2> doubles{};
  std::size_t integer_count = 0;
  std::size_t double_count = 0;

  // Fatal beyond the six or two that fit.
  void Add(std::int64_t value);
  void Add(const void* reference) { Add(reinterpret_cast<std::int64_t>(reference)); }
  void AddDouble(double value);
};

// The call itself, by the type of its result. Each is fatal when the function is null or lets a C++
// exception out; `what` names it.
void CallNothing(abi::REALproc function, const CallArguments& arguments, const std::string& what);
std::int64_t CallInteger(abi::REALproc function, const CallArguments& arguments,
                         const std::string& what);
bool CallBoolean(abi::REALproc function, const CallArguments& arguments, const std::string& what);
double CallDouble(abi::REALproc function, const CallArguments& arguments, const std::string& what);

// Notified whenever a thread passes from the host's code to the plug-in's or back.
using SideObserver = void (*)(bool in_plugin);

namespace internal {
inline thread_local bool in_plugin = false;
inline SideObserver g_side_observer = nullptr;
}  // namespace internal

// For measurements: from now on the observer is notified, until null takes its place. No other
// thread may run the plug-in meanwhile.
inline void ObserveSides(SideObserver observer) { internal::g_side_observer = observer; }

// Whether code of the plug-in runs at this moment in this thread, called by the host and not itself
// inside an entry point. A test that makes allocations fail asks this so as to spare the host's
// own.
inline bool InPlugin() { return internal::in_plugin; }

// Sets what InPlugin answers in this thread, and restores it.
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
