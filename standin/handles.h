// The references and values that application code holds: handles to strings and objects.
//
// A non-nil handle owns one lock of the thing: copying the handle adds a lock, destroying it gives
// the lock back. Handles must not outlive the host. Several threads may have handles to one thing
// at the same time. One handle must not be changed while another thread uses it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/things.h"

namespace zqv::standin {

// Add a lock for the application, and give one back. Nil is ignored.
void AddLock(Thing* thing);
void GiveBack(Thing* thing);
// The number of locks of a thing, whoever owns them. 0 for nil.
std::int64_t LocksOf(const Thing* thing);

// What String and Object have in common. T is the struct of the thing.
template <typename T>
class Handle {
 public:
  Handle() = default;  // nil
  Handle(const Handle& other) : thing_(other.thing_) { AddLock(thing_); }
  Handle(Handle&& other) noexcept : thing_(std::exchange(other.thing_, nullptr)) {}
  Handle& operator=(Handle other) noexcept {
    std::swap(thing_, other.thing_);
    return *this;
  }
  ~Handle() { GiveBack(thing_); }

  bool IsNil() const { return thing_ == nullptr; }
  // The thing; null for nil. [borrowed]
  T* thing() const { return thing_; }
  // The number of locks of the thing, whoever owns them. 0 for nil.
  std::int64_t locks() const { return LocksOf(thing_); }

  // Whether both are handles to the same thing. Contents are not compared.
  friend bool operator==(const Handle& a, const Handle& b) { return a.thing_ == b.thing_; }
  friend bool operator!=(const Handle& a, const Handle& b) { return a.thing_ != b.thing_; }

 protected:
  explicit Handle(T* thing) : thing_(thing) {}

 private:
  T* thing_ = nullptr;
};

// A handle to a string of the host. The encoding is only a label: the bytes may not be well-formed
// in it.
class String : public Handle<StringThing> {
 public:
  String() = default;
  // Takes ownership of one lock.
  static String Adopt(StringThing* thing) { return String(thing); }

  // The bytes of the string, valid while somebody owns a lock. Empty for nil.
  std::string_view bytes() const { return IsNil() ? std::string_view() : thing()->bytes(); }
  abi::Encoding encoding() const { return IsNil() ? abi::kUnknownEncoding : thing()->encoding; }
  // The text in UTF-8; empty for nil. Nothing when it cannot be converted.
  std::optional<std::string> Utf8() const;
  // The reference in the type that entry points take, for calling one directly. [borrowed]
  abi::REALstring raw() const { return ToHost(thing()); }

 private:
  explicit String(StringThing* thing) : Handle(thing) {}
};

class Object;

// An argument or a result. Nil of any reference type is std::monostate.
using Value = std::variant<std::monostate, bool, std::int64_t, double, String, Object>;

// A handle to an object or array of the host.
class Object : public Handle<Thing> {
 public:
  Object() = default;
  // Takes ownership of one lock.
  static Object Adopt(Thing* thing) { return Object(thing); }

  // The functions below are for non-nil objects: except IsArray, they throw std::invalid_argument
  // for nil.
  const std::string& ClassName() const;
  // Whether the object is of this class or a subclass of it. Case is ignored.
  bool IsA(std::string_view class_name) const;
  bool IsArray() const;
  // For arrays only, else std::invalid_argument is thrown. An index out of bounds throws
  // std::out_of_range.
  std::int64_t Size() const;
  Value At(std::int64_t index) const;
  // Appends to an array of objects, as an application may do with an array that a method returned.
  // Throws std::invalid_argument for any other object.
  void Append(const Object& element) const;
  // The reference in the type that entry points take, for calling one directly. [borrowed]
  abi::REALobject raw() const { return ToHost(thing()); }

 private:
  explicit Object(Thing* thing) : Handle(thing) {}
};

// Convert an argument of Call and Construct to a Value.
inline Value ToValue(std::nullptr_t) { return std::monostate(); }
inline Value ToValue(bool value) { return value; }
inline Value ToValue(double value) { return value; }
inline Value ToValue(String value) { return value; }
inline Value ToValue(Object value) { return value; }
inline Value ToValue(Value value) { return value; }
template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer> &&
                                                        !std::is_same_v<Integer, bool>>>
Value ToValue(Integer value) {
  return static_cast<std::int64_t>(value);
}

}  // namespace zqv::standin
