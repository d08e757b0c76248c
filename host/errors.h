// Raises exceptions of the host's classes, which the application can catch.
//
// A Raise... function does not throw: it marks an exception pending and returns, and the caller
// continues. The host throws it in the application when the library's function has returned.
// Exceptions belong to the calling thread.
//
// Guard converts C++ exceptions to host exceptions; none may leave the library.
#pragma once

#include <cstdint>
#include <exception>
#include <type_traits>
#include <utility>

#include "host/ref.h"

namespace zqv::host {

// Names of the host's exception classes.
inline constexpr char kRuntimeException[] = "RuntimeException";
inline constexpr char kOutOfBoundsException[] = "OutOfBoundsException";
inline constexpr char kOutOfMemoryException[] = "OutOfMemoryException";
inline constexpr char kIOException[] = "IOException";
inline constexpr char kUnsupportedFormatException[] = "UnsupportedFormatException";
inline constexpr char kUnsupportedOperationException[] = "UnsupportedOperationException";

// Raises an exception of the named class with `message` (UTF-8; null for none) and ErrorNumber 0.
// When the host does not have that class, raises a RuntimeException; when it cannot make that
// either, raises nothing.
void RaiseException(const char* class_name, const char* message) noexcept;

// Raises an OutOfBoundsException for the index `value` into a list of `count` elements.
void RaiseOutOfBoundsException(std::int64_t value, std::int64_t count) noexcept;

// Raises a host exception for a C++ exception. Its class depends on the type of `e`; e.what() is
// appended to the message.
void RaiseRuntimeException(const std::exception& e) noexcept;

// Raises a host exception for the C++ exception that is being handled. Call it in a catch block.
void RaiseCurrentException() noexcept;

namespace internal {

// Converts a result to what the host takes: an owner gives up its lock to the caller, and a number
// is passed as it is.
template <class Traits>
typename Traits::Raw ToHost(Ref<Traits>&& ref) {
  return ref.Detach();
}
template <class Value, class = std::enable_if_t<std::is_scalar_v<Value>>>
Value ToHost(Value value) {
  return value;
}

}  // namespace internal

// Runs `body`, the whole of a function that the host calls, and returns its result; of a Ref, the
// object with its lock. When `body` throws, raises a host exception and returns nil, 0 or false.
template <class Body>
auto Guard(Body&& body) noexcept {
  using Result = decltype(body());
  if constexpr (std::is_void_v<Result>) {
    try {
      std::forward<Body>(body)();
    } catch (...) {
      RaiseCurrentException();
    }
  } else {
    using Raw = decltype(internal::ToHost(std::declval<Result>()));
    try {
      return internal::ToHost(std::forward<Body>(body)());
    } catch (...) {
      RaiseCurrentException();
    }
    return Raw{};
  }
}

}  // namespace zqv::host
