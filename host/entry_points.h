// The host's entry points as typed callable objects. Each is looked up by name through the host's
// resolver when it is first used; its address is then cached for the life of the process.
//
// Calling an entry point that the host lacks does nothing and returns nil or zero.
//
// Threads: the resolver and the version are set once, in REALPluginMain. After that any thread may
// call anything here.
#pragma once

#include <atomic>

#include "abi/records.h"

namespace zqv::host {

// Stores the host's resolver for the life of the process. With null, every entry point is missing.
void SetResolver(abi::Resolver resolver);

// The host's version as a number such as 2013.04; 0 when it is unknown.
double HostVersion();
void SetHostVersion(double version);

// The address of an entry point, or null when the host lacks it. Not cached.
void* Resolve(const char* name);

// Converts an address that the host returned to a function pointer; null stays null.
template <class Function>
Function ProcedureAt(void* address) {
  return reinterpret_cast<Function>(address);
}

template <class Signature>
class EntryPoint;

// An entry point of the host. Constant-initialised, so that no code runs when the library is
// loaded.
template <class Result, class... Arguments>
class EntryPoint<Result(Arguments...)> {
 public:
  using Function = Result (*)(Arguments...);

  constexpr explicit EntryPoint(const char* name) : name_(name) {}

  // The host's function, or null when the host lacks it. An address that was found is cached; a
  // missing entry point is looked up again at each use.
  Function Find() {
    Function function = function_.load(std::memory_order_relaxed);
    if (function == nullptr) {
      function = ProcedureAt<Function>(Resolve(name_));
      function_.store(function, std::memory_order_relaxed);
    }
    return function;
  }

  // Calls the host's function. Returns nil or 0 when the host lacks it.
  Result operator()(Arguments... arguments) {
    const Function function = Find();
    return function != nullptr ? function(arguments...) : Result();
  }

 private:
  const char* name_;
  std::atomic<Function> function_{nullptr};
};

// One object for each row of abi/entry_points.def, with its name: entry::REALLockObject(object).
namespace entry {
using namespace abi;  // NOLINT: the rows name the interface's types as they are
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) \
  inline EntryPoint<result arguments> name{#name};
#include "abi/entry_points.def"
}  // namespace entry

}  // namespace zqv::host
