// Smart pointers for strings, objects and arrays of the host, which counts their references; one
// reference is called a lock.
//
// Ref owns one lock, or is nil; its destructor gives the lock back. Slot does the same as a field
// of a record that the host owns. The host frees a record without running C++ destructors, so a
// Slot gives its lock back in Clear() and Put() only.
//
// Adopt() takes ownership of a lock that the library was given; Share() adds a lock. A search for
// "Share" finds every place where the library adds one.
#pragma once

#include <type_traits>
#include <utility>

#include "abi/records.h"
#include "host/entry_points.h"

namespace zqv::host {

// Traits: how the host's functions add a lock to each kind of thing, and take it back. Add returns
// false when the host lacks the entry point.
struct StringTraits {
  using Raw = abi::REALstring;
  static bool Add(Raw string) {
    if (entry::REALLockString.Find() == nullptr) return false;
    entry::REALLockString(string);
    return true;
  }
  static void GiveBack(Raw string) { entry::REALUnlockString(string); }
};

struct ObjectTraits {
  using Raw = abi::REALobject;
  static bool Add(Raw object) {
    if (entry::REALLockObject.Find() == nullptr) return false;
    entry::REALLockObject(object);
    return true;
  }
  static void GiveBack(Raw object) { entry::REALUnlockObject(object); }
};

// An array is an object to the host: it has the same locks, and can be the value of a Variant.
inline abi::REALobject AsObject(abi::REALarray array) {
  return reinterpret_cast<abi::REALobject>(array);
}

struct ArrayTraits {
  using Raw = abi::REALarray;
  static bool Add(Raw array) { return ObjectTraits::Add(AsObject(array)); }
  static void GiveBack(Raw array) { ObjectTraits::GiveBack(AsObject(array)); }
};

// Owns one lock on a string, object or array; or nothing (nil).
template <class Traits>
class [[nodiscard]] Ref {
 public:
  using Raw = typename Traits::Raw;

  Ref() = default;
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  Ref(Ref&& other) noexcept : raw_(other.Detach()) {}
  Ref& operator=(Ref&& other) noexcept {
    Ref old(std::move(*this));
    raw_ = other.Detach();
    return *this;
  }
  ~Ref() {
    if (raw_ == nullptr) return;
    try {
      Traits::GiveBack(raw_);
    } catch (...) {
      // A destructor must not throw, and the host gives no way to repeat the call.
    }
  }

  // Takes ownership of the lock that comes with `raw`, which may be nil.
  static Ref Adopt(Raw raw) { return Ref(raw); }

  // Adds a lock to `raw` [borrowed]. Nil when `raw` is nil or the host cannot add a lock: to give
  // back a lock that was never added would free the object while others still use it.
  static Ref Share(Raw raw) { return Ref(raw != nullptr && Traits::Add(raw) ? raw : nullptr); }

  // The object, or nil. [borrowed: the lock stays here]
  Raw get() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }

  // Passes the lock to the caller; nil afterwards. [new lock]
  [[nodiscard]] Raw Detach() { return std::exchange(raw_, nullptr); }

 private:
  explicit Ref(Raw raw) : raw_(raw) {}

  Raw raw_ = nullptr;
};

using StringRef = Ref<StringTraits>;
using ObjectRef = Ref<ObjectTraits>;
using ArrayRef = Ref<ArrayTraits>;

// A field of a record that the host owns. Has the size of a pointer and no constructor; nil when
// its bytes are zero.
template <class Traits>
class Slot {
 public:
  using Raw = typename Traits::Raw;

  Raw get() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }

  // Adds a lock, for the result of a getter; nil stays nil. [new lock]
  Ref<Traits> Share() const { return Ref<Traits>::Share(raw_); }

  // Stores what `ref` owns, then gives back what was stored before.
  void Put(Ref<Traits>&& ref) {
    const auto old = Ref<Traits>::Adopt(std::exchange(raw_, ref.Detach()));
  }

  // Moves the lock out of the record; nil afterwards.
  Ref<Traits> Take() { return Ref<Traits>::Adopt(std::exchange(raw_, nullptr)); }

  // Gives the lock back; nil afterwards.
  void Clear() { Put(Ref<Traits>()); }

 private:
  Raw raw_;
};

using StringSlot = Slot<StringTraits>;
using ObjectSlot = Slot<ObjectTraits>;
using ArraySlot = Slot<ArrayTraits>;

static_assert(sizeof(StringSlot) == sizeof(void*) && std::is_trivial_v<StringSlot> &&
                  std::is_standard_layout_v<StringSlot>,
              "a slot is a plain pointer in a record that the host reads");

}  // namespace zqv::host
