// The only file that calls a function through a type that it chooses itself.
#include "standin/invoke.h"

#include <exception>

#include "standin/fatal.h"

// Allows a call through another type than the function's own.
#if defined(__clang__)
#define ZQV_ANY_FUNCTION_TYPE __attribute__((no_sanitize("function")))
#else
#define ZQV_ANY_FUNCTION_TYPE
#endif

namespace zqv::standin {
namespace {

template <typename Result>
ZQV_ANY_FUNCTION_TYPE Result Jump(abi::REALproc function, const CallArguments& arguments) {
  using Function = Result (*)(std::int64_t, std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                              std::int64_t, double, double);
  const auto& i = arguments.integers;
  const auto& d = arguments.doubles;
  const PluginScope scope(true);
  return reinterpret_cast<Function>(function)(i[0], i[1], i[2], i[3], i[4], i[5], d[0], d[1]);
}

// Calls the function. A C++ exception that leaves the plug-in would end a real host, so here it is
// fatal.
template <typename Result>
Result Call(abi::REALproc function, const CallArguments& arguments, const std::string& what) {
  if (function == nullptr) Fatal(what + ": the function is null");
  try {
    return Jump<Result>(function, arguments);
  } catch (const std::exception& error) {
    Fatal(what + ": a C++ exception left the library: " + error.what());
  } catch (...) {
    Fatal(what + ": a C++ exception left the library");
  }
}

}  // namespace

void CallArguments::Add(std::int64_t value) {
  if (integer_count == integers.size()) Fatal("a call with more arguments than registers");
  integers[integer_count++] = value;
}

void CallArguments::AddDouble(double value) {
  if (double_count == doubles.size()) Fatal("a call with more arguments than registers");
  doubles[double_count++] = value;
}

void CallNothing(abi::REALproc function, const CallArguments& arguments, const std::string& what) {
  Call<void>(function, arguments, what);
}

std::int64_t CallInteger(abi::REALproc function, const CallArguments& arguments,
                         const std::string& what) {
  return Call<std::int64_t>(function, arguments, what);
}

bool CallBoolean(abi::REALproc function, const CallArguments& arguments, const std::string& what) {
  const abi::RBBoolean result = Call<abi::RBBoolean>(function, arguments, what);
  if (result != 0 && result != 1) Fatal(what + ": a Boolean result that is neither 0 nor 1");
  return result != 0;
}

double CallDouble(abi::REALproc function, const CallArguments& arguments, const std::string& what) {
  return Call<double>(function, arguments, what);
}

}  // namespace zqv::standin
