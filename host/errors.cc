// Creates exception objects through the host, and maps types of C++ exceptions to classes of the
// host (Translate). A failure while an exception is raised is ignored: the host then sees a less
// detailed exception, or none.
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

// An object of the named class or, when the host cannot make one, a RuntimeException; nil when it
// cannot make that either.
ObjectRef NewExceptionObject(const char* class_name) {
  auto object = ObjectRef::Adopt(entry::PluginNewInstance(class_name));
  return object ? std::move(object) : ObjectRef::Adopt(entry::PluginNewInstance(kRuntimeException));
}

// Nil for a null message. Nil also when the host throws while it makes the string: to raise that
// exception would only repeat the failure.
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

// The class and the start of the message for a C++ exception. That overflow_error and
// underflow_error become an OutOfBoundsException is part of the interface's contract.
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
    // The host threw while it was given the exception. Nothing can be raised any more.
  }
}

void RaiseOutOfBoundsException(std::int64_t value, std::int64_t count) noexcept {
  constexpr std::size_t kSize = 205;
  const auto message = base::AllocateZeroed<char>(kSize);
  if (message == nullptr) return RaiseException(kOutOfBoundsException, "Out of Bounds");
  // QUIRK: because of the two empty strings the message has two spaces after "index". Part of the
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
    // No memory for the whole message: raise the same class with the short one.
    RaiseException(translation.class_name, translation.text);
  }
}

void RaiseCurrentException() noexcept {
  try {
    throw;
  } catch (const std::exception& e) {
    RaiseRuntimeException(e);
  } catch (...) {
    ZQV_LOG("Unnamed C++ Exception.");
    RaiseException(kRuntimeException, "Sorry, but there was an unnamed C++ Exception.");
  }
}

}  // namespace zqv::host
