// Makes, locks and frees every thing that the host hands out.
//
// Invariant: a thing is freed at the moment its last lock goes, after the destructors of its class
// and super classes have run; nobody may lock it once that has begun. With a broken lock or unlock
// entry point the counts mean nothing: then things of that kind live until the host ends.
//
// The host's lock must be held for every call when there are several threads. It is given up while
// a constructor or destructor of the plug-in runs, that is in NewObject and Unlock.
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
  // Frees whatever lives, running no destructors.
  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // For checks of liveness and for reports.
  Ledger& ledger() { return ledger_; }

  // Each new thing has one lock. `creator` is a literal: an entry point's name or "application".
  StringThing* NewString(std::string_view bytes, abi::Encoding encoding, const char* creator);
  Thing* NewObject(const ClassInfo& info, const char* creator);
  NativeThing* NewNative(const ClassInfo& info, const char* creator);
  ArrayThing* NewArray(int element_type, std::int64_t upper_bound, const char* creator);

  // The thing behind a pointer that came from outside; fatal when it is not alive or of another
  // kind. `user` names who uses it. Nil is fatal too.
  StringThing* String(const void* raw, const char* user) const;
  Thing* Object(const void* raw, const char* user) const;  // an object or an array
  ArrayThing* Array(const void* raw, const char* user) const;
  NativeThing* Native(const void* raw, NativeKind kind, const char* user) const;

  // The thing must be alive. Unlock may free it, and whatever it alone held.
  void Lock(Thing* thing, const char* user) {
    if (thing->dying) RefuseLock(*thing, user);
    ++thing->locks;
  }
  void Unlock(Thing* thing, const char* user) {
    if (IsImmortal(thing->kind)) return;
    if (thing->LockCount() <= 0) RefuseUnlock(*thing, user);
    if (--thing->locks == thing->lock_bias) End(thing);
  }
  // From now on things of that kind are not freed. Objects include arrays.
  void MakeImmortal(ThingKind kind);

  // Array elements; the index must be within bounds, which Insert alone may exceed by one.
  std::int64_t UpperBound(const ArrayThing& array) const;
  std::int64_t Element(const ArrayThing& array, std::int64_t index, const char* user) const;
  void SetInteger(ArrayThing* array, std::int64_t index, std::int64_t value, const char* user);
  // The array adds its own lock; nil is allowed.
  void Insert(ArrayThing* array, std::int64_t index, Thing* element, const char* user);

 private:
  // Allocates a thing, zeroes its first bytes and fills in its head, with one lock; fatal when
  // there is no memory.
  template <typename T>
  T* Begin(std::size_t size, std::size_t zeroed, const TypeInfo& type, ThingKind kind,
           const char* creator);
  // The thing behind a pointer; fatal unless it lives and `is_wanted` is true of its kind, which
  // `wanted` names.
  template <typename IsWanted>
  Thing* Checked(const void* raw, const char* user, const char* wanted, IsWanted is_wanted) const;
  [[noreturn]] static void RefuseLock(const Thing& thing, const char* user);
  [[noreturn]] static void RefuseUnlock(const Thing& thing, const char* user);
  [[noreturn]] static void Refuse(const Thing* thing, const char* user, const char* wanted);
  void ShowFields(ArrayThing* array) const;
  bool IsImmortal(ThingKind kind) const {
    return kind == ThingKind::kString ? strings_are_immortal_ : objects_are_immortal_;
  }
  // Its last lock is gone.
  void End(Thing* thing);
  // On so much more stack than it takes itself.
  void DestroyOnStack(std::size_t bytes, Thing* thing);
  void Destroy(Thing* thing);
  void RunDestructors(Thing* object, const ClassInfo& info) const;
  static void CheckBytes(const StringThing& string);
  // Give up what the thing holds apart from its own memory. `unlock`: locks on other things too.
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

// The class of an object; null for strings and arrays.
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
