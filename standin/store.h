// The store makes, locks and frees all things: the strings, objects and arrays of the host.
//
// A thing is freed as soon as its last lock is given back, after the destructors of its class and
// super classes have run. Adding a lock after the destructors have begun is fatal. When an entry
// point that locks or unlocks has a fault, counts are wrong: then things of that kind live until
// the host ends.
//
// With several threads, the caller must hold the host's mutex for every call. NewObject and Unlock
// release it while they run a constructor or destructor of the plug-in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/capabilities.h"
#include "standin/class_table.h"
#include "standin/ledger.h"
#include "standin/native.h"
#include "standin/things.h"

namespace zqv::standin {

class Store {
 public:
  explicit Store(const Capabilities& capabilities);
  // Frees everything that is alive, without running destructors.
  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // Used to check whether things are alive, and for leak reports.
  Ledger& ledger() { return ledger_; }

  // Make a thing with one lock. `creator` is a string literal: the name of an entry point, or
  // "application". [new lock]
  StringThing* NewString(std::string_view bytes, abi::Encoding encoding, const char* creator);
  Thing* NewObject(const ClassInfo& info, const char* creator);
  NativeThing* NewNative(const ClassInfo& info, const char* creator);
  ArrayThing* NewArray(int element_type, std::int64_t upper_bound, const char* creator);

  // Check a pointer that came from the plug-in or the application and return the thing. Fatal when
  // it is nil, not alive, or of another kind. `user` names who uses it. [borrowed]
  StringThing* String(const void* raw, const char* user) const;
  Thing* Object(const void* raw, const char* user) const;  // also accepts an array
  ArrayThing* Array(const void* raw, const char* user) const;
  NativeThing* Native(const void* raw, NativeKind kind, const char* user) const;

  // Add a lock, and give one back. The thing must be alive. Unlock frees it, and the things that
  // only it had locked, when no lock is left.
  void Lock(Thing* thing, const char* user) {
    if (thing->dying) RefuseLock(*thing, user);
    ++thing->locks;
  }
  void Unlock(Thing* thing, const char* user) {
    if (IsImmortal(thing->kind)) return;
    if (thing->LockCount() <= 0) RefuseUnlock(*thing, user);
    if (--thing->locks == thing->lock_bias) End(thing);
  }
  // From now on things of this kind are not freed. kObject includes arrays.
  void MakeImmortal(ThingKind kind);

  // Access to elements. `index` must be within bounds; Insert also accepts the end of the array.
  std::int64_t UpperBound(const ArrayThing& array) const;
  std::int64_t Element(const ArrayThing& array, std::int64_t index, const char* user) const;
  void SetInteger(ArrayThing* array, std::int64_t index, std::int64_t value, const char* user);
  // Adds a lock for the array. `element` may be nil.
  void Insert(ArrayThing* array, std::int64_t index, Thing* element, const char* user);

 private:
  // Allocates `size` bytes for a thing, zeroes the first `zeroed` of them, and fills in its head,
  // with one lock. Fatal when there is no memory.
  template <typename T>
  T* Begin(std::size_t size, std::size_t zeroed, const TypeInfo& type, ThingKind kind,
           const char* creator);
  // Returns the thing that `raw` points to. Fatal unless it is alive and `is_wanted` returns true
  // for its kind, which `wanted` names in the message.
  template <typename IsWanted>
  Thing* Checked(const void* raw, const char* user, const char* wanted, IsWanted is_wanted) const;
  [[noreturn]] static void RefuseLock(const Thing& thing, const char* user);
  [[noreturn]] static void RefuseUnlock(const Thing& thing, const char* user);
  [[noreturn]] static void Refuse(const Thing* thing, const char* user, const char* wanted);
  void ShowFields(ArrayThing* array) const;
  bool IsImmortal(ThingKind kind) const {
    return kind == ThingKind::kString ? strings_are_immortal_ : objects_are_immortal_;
  }
  // Frees a thing without locks, on an enlarged stack if the capabilities ask for it.
  void End(Thing* thing);
  // Calls Destroy after it has taken `bytes` more of the stack.
  void DestroyOnStack(std::size_t bytes, Thing* thing);
  void Destroy(Thing* thing);
  void RunDestructors(Thing* object, const ClassInfo& info) const;
  static void CheckBytes(const StringThing& string);
  // Free what a thing owns besides its own memory. `unlock` tells whether to give back its locks on
  // other things.
  void Release(Thing* thing, bool unlock);
  void ReleaseState(NativeThing* thing, bool unlock);
  void ReleaseBody(ArrayThing* array, bool unlock);
  static std::size_t SizeOf(const Thing& thing);

  const ArrayLayout layout_;
  const std::size_t release_stack_;
  Ledger ledger_;
  bool strings_are_immortal_ = false;
  bool objects_are_immortal_ = false;
};

// The class of an object; null for a string or array.
inline const ClassInfo* ClassOf(const Thing& thing) {
  return thing.kind == ThingKind::kObject ? static_cast<const ClassInfo*>(thing.type) : nullptr;
}

template <typename IsWanted>
Thing* Store::Checked(const void* raw, const char* user, const char* wanted,
                      IsWanted is_wanted) const {
  Thing* const thing = static_cast<Thing*>(const_cast<void*>(raw));
  if (raw == nullptr) Refuse(nullptr, user, wanted);
  ledger_.CheckAlive(raw, user);
  if (!is_wanted(thing->kind)) Refuse(thing, user, wanted);
  return thing;
}

inline StringThing* Store::String(const void* raw, const char* user) const {
  return static_cast<StringThing*>(
      Checked(raw, user, "a string", [](ThingKind kind) { return kind == ThingKind::kString; }));
}

inline Thing* Store::Object(const void* raw, const char* user) const {
  return Checked(raw, user, "an object", [](ThingKind kind) { return kind != ThingKind::kString; });
}

inline ArrayThing* Store::Array(const void* raw, const char* user) const {
  return static_cast<ArrayThing*>(
      Checked(raw, user, "an array", [](ThingKind kind) { return kind == ThingKind::kArray; }));
}

}  // namespace zqv::standin
