// The way into the host: the resolver that it handed us, its version, and every entry point as a
// typed callable that is looked up by name at its first use and cached for the life of the process.
//
// Invariant: a name that the host lacks makes the call a no-op with a nil or zero result, never an
// error. Resolver and version are set once, when the library is registered; after that any thread
// may call, and threads that look up the same name at once find the same address.
#pragma once

#include <atomic>

#include "abi/records.h"

namespace zqv::host {

// Keeps the resolver for the life of the process; null means that no entry point can be had.
void SetResolver(abi::Resolver resolver);

// The host's version as a number such as 2013.04; 0 when the host does not say.
double HostVersion();
void SetHostVersion(double version);

// The address of a host entry point, or null. Asks the resolver each time; see EntryPoint.
void* Resolve(const char* name);

// A function that the host hands out by address; null stays null.
template <class Function>
Function ProcedureAt(void* address) {
  return reinterpret_cast<Function>(address);
}

template <class Signature>
class EntryPoint;

// One entry point of the host. Constant-initialised, so that nothing runs when the library loads.
template <class Result, class... Arguments>
class EntryPoint<Result(Arguments...)> {
 public:
  using Function = Result (*)(Arguments...);

  constexpr explicit EntryPoint(const char* name) : name_(name) {}

  // The host's function, or null when the host lacks it. Found addresses are never asked for
  // again; an entry point that is missing is asked for at every use.
  Function Find() {
    Function function = function_.load(std::memory_order_relaxed);
    if (function == nullptr) {
      function = ProcedureAt<Function>(Resolve(name_));
      function_.store(function, std::memory_order_relaxed);
    }
    return function;
  }

  // Calls the host; a missing entry point gives Result(): nil, 0 or nothing.
  Result operator()(Arguments... arguments) {
    const Function function = Find();
    return function != nullptr ? function(arguments...) : Result();
  }

 private:
  const char* name_;
  std::atomic<Function> function_{nullptr};
};

// Every entry point by its own name: entry::REALLockObject(object).
namespace entry {
using namespace abi;  // NOLINT: the rows name the interface's types as they are
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) \
  inline EntryPoint<result arguments> name{#name};
#include "abi/entry_points.def"
}  // namespace entry

}  // namespace zqv::host
