// Failures that the application is to see: exceptions of the host's own classes.
//
// Raising marks the exception pending and returns; the host delivers it when our call returns. So
// code goes on after a raise, and Guard is the border that no C++ exception crosses.
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

// Marks an exception of the named class pending, with `message` (UTF-8; null for none) and
// ErrorNumber 0. An unknown class becomes a RuntimeException; when that cannot be made either,
// nothing is raised. Never throws. The exception belongs to the calling thread.
void RaiseException(const char* class_name, const char* message) noexcept;

// For an index `value` into a collection of `count` elements.
void RaiseOutOfBoundsException(std::int64_t value, std::int64_t count) noexcept;

// For a caught C++ exception: the class by its type, the text from its what().
void RaiseRuntimeException(const std::exception& e) noexcept;

// For whatever is being handled in the enclosing catch block.
void RaiseCurrentException() noexcept;

namespace internal {

template <class Traits>
typename Traits::Raw Hand(Ref<Traits>&& ref) {
  return ref.Detach();
}
template <class Value, class = std::enable_if_t<std::is_scalar_v<Value>>>
Value Hand(Value value) {
  return value;
}

}  // namespace internal

// Runs the body of a function that the host calls and hands its result over as the host takes it:
// an owner gives up its count to the caller. Anything thrown becomes a host exception, and the
// result is then `fallback`: nil, 0 or false.
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
    using Handed = decltype(internal::Hand(std::declval<Result>()));
    try {
      return internal::Hand(std::forward<Body>(body)());
    } catch (...) {
      RaiseCurrentException();
    }
    return Handed{};
  }
}

}  // namespace zqv::host
