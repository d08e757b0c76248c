#include "host/errors.h"

#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "abi/encodings.h"
#include "base/heap.h"
#include "base/log.h"
#include "host/strings.h"

namespace zqv::host {
namespace {

ObjectRef NewExceptionObject(const char* class_name) {
  auto object = ObjectRef::Adopt(entry::PluginNewInstance(class_name));
  return object ? std::move(object) : ObjectRef::Adopt(entry::PluginNewInstance(kRuntimeException));
}

// Nil for no message, and when the host throws while it makes one: raising that failure would run
// into it again.
StringRef NewMessage(const char* message) {
  try {
    return message != nullptr ? BuildStringOrThrow(message, abi::kUtf8) : StringRef();
  } catch (...) {
    return {};
  }
}

void Raise(const char* class_name, const char* message) {
  const StringRef text = NewMessage(message);
  const ObjectRef exception = NewExceptionObject(class_name);
  if (!exception) return;
  entry::REALSetPropValueString(exception.get(), "Message", text.get());
  entry::REALSetPropValueInteger(exception.get(), "ErrorNumber", 0);
  entry::RuntimeRaiseException(exception.get());
}

struct Translation {
  const char* text;
  const char* class_name;
};

// The pairings of range with out-of-range, and of overflow and underflow with the out-of-bounds
// class, are intended. The order of the tests matters only for types derived from two of these.
Translation Translate(const std::exception& e) {
  if (dynamic_cast<const std::bad_alloc*>(&e) != nullptr)
    return {"Failed to allocate memory", kOutOfMemoryException};
  if (dynamic_cast<const std::range_error*>(&e) != nullptr ||
      dynamic_cast<const std::out_of_range*>(&e) != nullptr)
    return {"C++ reports range error", kOutOfBoundsException};
  if (dynamic_cast<const std::overflow_error*>(&e) != nullptr)
    return {"C++ reports overflow error", kOutOfBoundsException};
  if (dynamic_cast<const std::underflow_error*>(&e) != nullptr)
    return {"C++ reports underflow error", kOutOfBoundsException};
  return {"C++ Exception", kRuntimeException};
}

}  // namespace

void RaiseException(const char* class_name, const char* message) noexcept {
  try {
    Raise(class_name, message);
  } catch (...) {
    // The host threw while taking the exception; there is nobody left to tell.
  }
}

void RaiseOutOfBoundsException(std::int64_t value, std::int64_t count) noexcept {
  constexpr std::size_t kSize = 205;
  const auto message = base::AllocateZeroed<char>(kSize);
  if (message == nullptr) return RaiseException(kOutOfBoundsException, "Out of Bounds");
  // QUIRK: the two empty strings leave two blanks after "index". Part of the
  // interface's contract; changing it is a major version.
  // Test: OutOfBoundsMessage.KeepsTwoBlanksAfterIndex.
  static_cast<void>(
      std::snprintf(message.get(), kSize,
                    "The parameter %s %s%s is too %s. Range is %lld to %lld, but value is %lld.",
                    "index", "", "", value < 0 ? "small" : "big", 0LL,
                    static_cast<long long>(count - 1), static_cast<long long>(value)));
  RaiseException(kOutOfBoundsException, message.get());
}

void RaiseRuntimeException(const std::exception& e) noexcept {
  const Translation translation = Translate(e);
  const char* what = e.what();
  const bool has_text = what != nullptr && *what != '\0';
  try {
    std::string message = translation.text;
    message += has_text ? std::string(": ") + what : std::string(".");
    RaiseException(translation.class_name, message.c_str());
  } catch (...) {
    // No memory for the whole text: the class and the base text still get through.
    RaiseException(translation.class_name, translation.text);
  }
}

void RaiseCurrentException() noexcept {
  try {
    throw;
  } catch (const std::exception& e) {
    RaiseRuntimeException(e);
  } catch (...) {
    ZQV_LOG("%s%s", "Unnamed C++ Exception.");
    RaiseException(kRuntimeException, "Sorry, but there was an unnamed C++ Exception.");
  }
}

}  // namespace zqv::host
