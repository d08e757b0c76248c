// Ownership of host strings, objects and arrays, carried by types.
//
// Ref holds one of the host's counts on a thing, or nil, and gives it back when it goes. Slot is a
// field of a record that the host owns: the same promise, but given back only by Clear() or Put(),
// because the host frees the record's memory without running destructors.
//
// Two verbs make a Ref: Adopt() takes over a count that we were given, Share() adds one. So a
// search for "Share" finds every count that we add.
#pragma once

#include <type_traits>
#include <utility>

#include "abi/records.h"
#include "host/entry_points.h"

namespace zqv::host {

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

// An array is an object: it is counted as one, and a Variant holds it as one.
inline abi::REALobject AsObject(abi::REALarray array) {
  return reinterpret_cast<abi::REALobject>(array);
}

struct ArrayTraits {
  using Raw = abi::REALarray;
  static bool Add(Raw array) { return ObjectTraits::Add(AsObject(array)); }
  static void GiveBack(Raw array) { ObjectTraits::GiveBack(AsObject(array)); }
};

// An owner of one count on a host thing, or of nothing.
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
      // A host that throws while taking its thing back has nothing to tell a destructor.
    }
  }

  // Takes over the count that comes with `raw`, which may be nil.
  static Ref Adopt(Raw raw) { return Ref(raw); }

  // Adds a count of its own. Nil when `raw` is nil, and also when the host cannot add one: an
  // owner that gave back what it never got would free the thing under somebody else.
  static Ref Share(Raw raw) { return Ref(raw != nullptr && Traits::Add(raw) ? raw : nullptr); }

  // The thing itself, still ours; nil when there is none.
  Raw get() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }

  // Hands the count on to the caller and keeps nothing.
  [[nodiscard]] Raw Detach() { return std::exchange(raw_, nullptr); }

 private:
  explicit Ref(Raw raw) : raw_(raw) {}

  Raw raw_ = nullptr;
};

using StringRef = Ref<StringTraits>;
using ObjectRef = Ref<ObjectTraits>;
using ArrayRef = Ref<ArrayTraits>;

// A field of a host-owned record: pointer-sized, trivial, nil when zero-filled.
template <class Traits>
class Slot {
 public:
  using Raw = typename Traits::Raw;

  Raw get() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }

  // A new owner of the same thing, for a getter to hand out; nil stays nil.
  Ref<Traits> Share() const { return Ref<Traits>::Share(raw_); }

  // Stores what `ref` owns and then gives back what was here before.
  void Put(Ref<Traits>&& ref) {
    const auto old = Ref<Traits>::Adopt(std::exchange(raw_, ref.Detach()));
  }

  // Moves the ownership out of the record; nil afterwards.
  Ref<Traits> Take() { return Ref<Traits>::Adopt(std::exchange(raw_, nullptr)); }

  // Gives back what is here; nil afterwards.
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
