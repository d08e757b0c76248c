// What an application holds: typed handles to strings and objects, and values.
//
// Each non-nil handle has one lock of its own; copying a handle adds a lock, its end gives it
// back. Handles must not outlive the host. Several threads may use handles to one thing at the same
// time, but a handle of its own is needed by a thread that changes it.
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

// Adds and gives back an application's lock; nil is ignored.
void AddLock(Thing* thing);
void GiveBack(Thing* thing);
// The locks of all holders together; 0 for nil.
std::int64_t LocksOf(const Thing* thing);

// The part that strings and objects share. T is the thing's struct.
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
  // Borrowed; null for nil.
  T* thing() const { return thing_; }
  // The locks of all holders together; 0 for nil.
  std::int64_t locks() const { return LocksOf(thing_); }

  // The very same thing, not equal contents.
  friend bool operator==(const Handle& a, const Handle& b) { return a.thing_ == b.thing_; }
  friend bool operator!=(const Handle& a, const Handle& b) { return a.thing_ != b.thing_; }

 protected:
  explicit Handle(T* thing) : thing_(thing) {}

 private:
  T* thing_ = nullptr;
};

// A host string. Its encoding is a label: the bytes may not be well-formed in it.
class String : public Handle<StringThing> {
 public:
  String() = default;
  // Takes over one lock.
  static String Adopt(StringThing* thing) { return String(thing); }

  // The string's own bytes, valid while a lock is held; empty for nil.
  std::string_view bytes() const { return IsNil() ? std::string_view() : thing()->bytes(); }
  abi::Encoding encoding() const { return IsNil() ? abi::kUnknownEncoding : thing()->encoding; }
  // The text in UTF-8, nothing when it cannot be had; empty text for nil.
  std::optional<std::string> Utf8() const;
  // For calling entry points directly; borrowed.
  abi::REALstring raw() const { return ToHost(thing()); }

 private:
  explicit String(StringThing* thing) : Handle(thing) {}
};

class Object;

// The nil of any reference type is std::monostate.
using Value = std::variant<std::monostate, bool, std::int64_t, double, String, Object>;

// A host object or array.
class Object : public Handle<Thing> {
 public:
  Object() = default;
  // Takes over one lock.
  static Object Adopt(Thing* thing) { return Object(thing); }

  // The rest is for non-nil objects; nil throws std::invalid_argument.
  const std::string& ClassName() const;
  // Of this class or a subclass of it, ignoring case.
  bool IsA(std::string_view class_name) const;
  bool IsArray() const;
  // Arrays only; an index out of bounds throws std::out_of_range.
  std::int64_t Size() const;
  Value At(std::int64_t index) const;
  // Object arrays only: what an application may do to an array that it was handed.
  void Append(const Object& element) const;
  // For calling entry points directly; borrowed.
  abi::REALobject raw() const { return ToHost(thing()); }

 private:
  explicit Object(Thing* thing) : Handle(thing) {}
};

// Makes a Value of whatever a caller has at hand.
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
