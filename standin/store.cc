// Layout, allocation and destruction of things.
//
// Bytes of an instance that belong to no record are filled with a fixed value and poisoned when it
// is made. When it is freed, they must be unchanged. For the same purpose a string has a checksum,
// because nobody may write to its bytes.
#include "standin/store.h"

#if defined(_WIN32)
#include <malloc.h>  // alloca
#else
#include <alloca.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <utility>

#include "standin/fatal.h"
#include "standin/host_lock.h"
#include "standin/invoke.h"
#include "standin/poison.h"

namespace zqv::standin {
namespace {

constexpr double kFirstVersionOfNewLayout = 2021.0;
constexpr int kGapByte = 0xC5;     // fills the bytes of an instance that belong to no record
constexpr int kFieldsByte = 0xA5;  // fills the unused bytes of an array's fields
constexpr std::int32_t kWrongLocksBias = 1;
constexpr std::size_t kFewElements = 16;  // capacity of a new array when the ledger is disabled

const TypeInfo kStringType{"String"};
const TypeInfo kObjectArrayType{"Array of objects"};
const TypeInfo kIntegerArrayType{"Array of integers"};

// The layout of arrays. Resolves kByVersion.
ArrayLayout LayoutOf(const Capabilities& capabilities) {
  if (capabilities.array_layout != ArrayLayout::kByVersion) return capabilities.array_layout;
  return capabilities.version >= kFirstVersionOfNewLayout ? ArrayLayout::kNew : ArrayLayout::kOld;
}

std::uint64_t Checksum(std::string_view bytes) { return std::hash<std::string_view>()(bytes); }

// Calls `visit(start, size)` for every range of an instance that is neither head nor record.
template <typename Visit>
void VisitGaps(const Thing* object, const ClassInfo& info, Visit visit) {
  const char* const start = static_cast<const char*>(static_cast<const void*>(object));
  std::size_t end = info.instance_size;
  for (const ClassInfo* c = &info; c != nullptr; c = c->super) {
    const std::size_t after_record = c->offset + c->record_size;
    if (end > after_record) visit(start + after_record, end - after_record);
    end = c->offset;
  }
  visit(start + sizeof(Thing), end - sizeof(Thing));
}

void GuardGaps(Thing* object, const ClassInfo& info) {
  VisitGaps(object, info, [](const char* start, std::size_t size) {
    std::memset(const_cast<char*>(start), kGapByte, size);
    Poison(start, size);
  });
}

void CheckGaps(const Thing* object, const ClassInfo& info) {
  VisitGaps(object, info, [object](const char* start, std::size_t size) {
    Unpoison(start, size);
    for (std::size_t i = 0; i < size; ++i) {
      if (static_cast<unsigned char>(start[i]) == kGapByte) continue;
      Fatal(Describe(*object) + ": memory outside its records was written to");
    }
  });
}

// Writes one of the fields that the plug-in reads. `offset` counts from the start of the array.
template <typename T>
void PutField(ArrayThing* array, std::size_t offset, T value) {
  std::memcpy(array->fields + (offset - kArrayStorageOffset), &value, sizeof value);
}

// Runs the constructors of the super classes first. Destructors run in the reverse order.
void RunConstructors(const CallArguments& object, const ClassInfo& info) {
  if (info.super != nullptr) RunConstructors(object, *info.super);
  if (info.definition->constructor == nullptr) return;
  const HostLockGap gap;
  CallNothing(info.definition->constructor, object, info.name);
}

}  // namespace

Store::Store(const Capabilities& capabilities)
    : layout_(LayoutOf(capabilities)),
      release_stack_(capabilities.release_stack),
      ledger_(capabilities.ledger, capabilities.quarantine_entries, capabilities.quarantine_bytes) {
}

Store::~Store() {
  for (Thing* thing : ledger_.LiveThings()) {
    Release(thing, false);
    ledger_.Died(thing, SizeOf(*thing));
  }
  for (void* buffer : ledger_.LentBuffers()) std::free(buffer);
}

void Store::MakeImmortal(ThingKind kind) {
  (kind == ThingKind::kString ? strings_are_immortal_ : objects_are_immortal_) = true;
}

template <typename T>
T* Store::Begin(std::size_t size, std::size_t zeroed, const TypeInfo& type, ThingKind kind,
                const char* creator) {
  void* const memory = ledger_.Allocate(size);
  if (memory == nullptr) OutOfMemory(creator);
  std::memset(memory, 0, zeroed);
  T* const thing = static_cast<T*>(memory);
  thing->type = &type;
  thing->kind = kind;
  thing->creator = creator;
  thing->locks = 1;
  return thing;
}

StringThing* Store::NewString(std::string_view bytes, abi::Encoding encoding, const char* creator) {
  auto* const string =
      Begin<StringThing>(sizeof(StringThing) + bytes.size() + 1, sizeof(StringThing), kStringType,
                         ThingKind::kString, creator);
  string->encoding = encoding;
  string->length = bytes.size();
  if (!bytes.empty()) std::memcpy(string->data(), bytes.data(), bytes.size());
  string->data()[bytes.size()] = '\0';
  if (ledger_.enabled()) string->checksum = Checksum(bytes);
  ledger_.Born(string);
  return string;
}

Thing* Store::NewObject(const ClassInfo& info, const char* creator) {
  if (info.native != NativeKind::kNone) return NewNative(info, creator);
  Thing* const object =
      Begin<Thing>(info.instance_size, info.instance_size, info, ThingKind::kObject, creator);
  if (ledger_.enabled()) GuardGaps(object, info);
  ledger_.Born(object);
  CallArguments arguments;
  arguments.Add(object);
  RunConstructors(arguments, info);
  return object;
}

NativeThing* Store::NewNative(const ClassInfo& info, const char* creator) {
  std::unique_ptr<NativeState> state = NewState(info.native);
  auto* const object = Begin<NativeThing>(sizeof(NativeThing), sizeof(NativeThing), info,
                                          ThingKind::kObject, creator);
  object->state = state.release();
  ledger_.Born(object);
  return object;
}

ArrayThing* Store::NewArray(int element_type, std::int64_t upper_bound, const char* creator) {
  const TypeInfo& type =
      element_type == abi::kObjectElements ? kObjectArrayType : kIntegerArrayType;
  auto* const array =
      Begin<ArrayThing>(kArraySize, sizeof(ArrayThing), type, ThingKind::kArray, creator);
  array->body = new (array + 1) ArrayBody{element_type, {}, {}};
  // With a ledger no capacity is reserved. So the storage moves as often as possible, and a plug-in
  // that keeps a pointer to it is detected.
  if (!ledger_.enabled()) array->body->slots.reserve(kFewElements);
  array->body->slots.resize(static_cast<std::size_t>(upper_bound + 1));
  if (layout_ == ArrayLayout::kWrongLocks) {
    array->lock_bias = kWrongLocksBias;
    array->locks += kWrongLocksBias;
  }
  std::memset(array->fields, kFieldsByte, sizeof array->fields);
  ShowFields(array);
  ledger_.Born(array);
  return array;
}

// Writes the fields that the plug-in reads, according to the layout.
void Store::ShowFields(ArrayThing* array) const {
  ArrayBody& body = *array->body;
  const std::int64_t* storage = body.slots.empty() ? nullptr : body.slots.data();
  if (layout_ == ArrayLayout::kWrongSlot0 || layout_ == ArrayLayout::kWrongSlot9) {
    const std::size_t hidden = layout_ == ArrayLayout::kWrongSlot0 ? 0 : 9;
    body.decoy = body.slots;
    if (hidden < body.decoy.size()) body.decoy[hidden] = 0;
    storage = body.decoy.empty() ? nullptr : body.decoy.data();
  }
  if (layout_ == ArrayLayout::kNoStorage) storage = nullptr;
  PutField(array, kArrayStorageOffset, storage);
  const std::int32_t dimensions = layout_ == ArrayLayout::kWrongDimensions ? 2 : 1;
  auto upper_bound = static_cast<std::int32_t>(UpperBound(*array));
  if (layout_ == ArrayLayout::kWrongUpperBound) ++upper_bound;
  if (layout_ == ArrayLayout::kOld) {
    PutField(array, kArrayDimensionsOffset, dimensions);
    PutField(array, kArrayOldUpperBoundOffset, upper_bound);
  } else if (layout_ == ArrayLayout::kNew) {
    PutField(array, kArrayDimensionsOffset, std::int64_t{dimensions});
    PutField(array, kArrayNewUpperBoundOffset, upper_bound);
  } else {
    // The upper bound is in the places of both layouts. So a layout that is wrong on purpose is
    // wrong in one respect only, for every version of the host.
    PutField(array, kArrayDimensionsOffset, std::int64_t{dimensions});
    PutField(array, kArrayOldUpperBoundOffset, upper_bound);
    PutField(array, kArrayNewUpperBoundOffset, upper_bound);
  }
}

void Store::Refuse(const Thing* thing, const char* user, const char* wanted) {
  if (thing == nullptr) Fatal(std::string(user) + ": nil is not allowed here");
  Fatal(std::string(user) + ": " + wanted + " is wanted, not " + Describe(*thing));
}

NativeThing* Store::Native(const void* raw, NativeKind kind, const char* user) const {
  Thing* const thing = Object(raw, user);
  const ClassInfo* const info = ClassOf(*thing);
  if (info != nullptr && info->native == kind) return static_cast<NativeThing*>(thing);
  Fatal(std::string(user) + ": an object of another class is wanted, not " + Describe(*thing));
}

void Store::RefuseLock(const Thing& thing, const char* user) {
  Fatal(std::string(user) + ": lock in its own destructor: " + Describe(thing));
}

void Store::RefuseUnlock(const Thing& thing, const char* user) {
  Fatal(std::string(user) + ": unlock below zero: " + Describe(thing));
}

void Store::End(Thing* thing) {
  if (release_stack_ > 0 && thing->kind != ThingKind::kString) {
    DestroyOnStack(release_stack_, thing);
  } else {
    Destroy(thing);
  }
}

// Never inlined: the stack must be free again when it returns. It writes to one byte of each page,
// from the highest address down, so that it meets the guard page of a stack that is too small. The
// write after Destroy keeps the compiler from freeing the stack before the call.
__attribute__((noinline)) void Store::DestroyOnStack(std::size_t bytes, Thing* thing) {
  constexpr std::size_t kPage = 4096;
  volatile char* const frame = static_cast<volatile char*>(alloca(bytes));
  for (std::size_t end = bytes; end > 0; end -= std::min(end, kPage)) frame[end - 1] = 1;
  frame[0] = 1;
  Destroy(thing);
  frame[0] = 0;
}

void Store::Destroy(Thing* thing) {
  thing->dying = true;
  const ClassInfo* const info = ClassOf(*thing);
  if (info != nullptr && info->definition != nullptr) {
    RunDestructors(thing, *info);
    if (ledger_.enabled()) CheckGaps(thing, *info);
  }
  if (thing->kind == ThingKind::kString) {
    if (ledger_.enabled()) CheckBytes(*static_cast<const StringThing*>(thing));
  } else {
    Release(thing, true);
  }
  ledger_.Died(thing, SizeOf(*thing));
}

void Store::CheckBytes(const StringThing& string) {
  if (Checksum(string.bytes()) == string.checksum && string.data()[string.length] == '\0') return;
  Fatal("the bytes were written to: " + Describe(string));
}

void Store::RunDestructors(Thing* object, const ClassInfo& info) const {
  CallArguments arguments;
  arguments.Add(object);
  for (const ClassInfo* c = &info; c != nullptr; c = c->super) {
    if (c->definition->destructor == nullptr) continue;
    const HostLockGap gap;
    CallNothing(c->definition->destructor, arguments, c->destructor_name);
  }
}

void Store::Release(Thing* thing, bool unlock) {
  const ClassInfo* const info = ClassOf(*thing);
  if (info != nullptr && info->native != NativeKind::kNone) {
    ReleaseState(static_cast<NativeThing*>(thing), unlock);
  } else if (thing->kind == ThingKind::kArray) {
    ReleaseBody(static_cast<ArrayThing*>(thing), unlock);
  }
}

void Store::ReleaseState(NativeThing* thing, bool unlock) {
  const std::unique_ptr<NativeState> state(thing->state);
  const auto* const exception = std::get_if<ExceptionState>(state.get());
  if (unlock && exception != nullptr && exception->message != nullptr) {
    Unlock(exception->message, "the end of an exception");
  }
}

void Store::ReleaseBody(ArrayThing* array, bool unlock) {
  static constexpr const char* kEnd = "the end of an array";
  const ArrayBody body = std::move(*array->body);
  array->body->~ArrayBody();
  if (!unlock || body.element_type != abi::kObjectElements) return;
  for (const std::int64_t slot : body.slots) {
    if (slot != 0) Unlock(Object(reinterpret_cast<const void*>(slot), kEnd), kEnd);
  }
}

std::size_t Store::SizeOf(const Thing& thing) {
  if (thing.kind == ThingKind::kArray) return kArraySize;
  if (thing.kind == ThingKind::kString) {
    return sizeof(StringThing) + static_cast<const StringThing&>(thing).length + 1;
  }
  const ClassInfo* const info = ClassOf(thing);
  return info->definition == nullptr ? sizeof(NativeThing) : info->instance_size;
}

std::int64_t Store::UpperBound(const ArrayThing& array) const {
  return static_cast<std::int64_t>(array.body->slots.size()) - 1;
}

std::int64_t Store::Element(const ArrayThing& array, std::int64_t index, const char* user) const {
  if (index < 0 || index > UpperBound(array)) {
    Fatal(std::string(user) + ": index " + std::to_string(index) + " of " + Describe(array) +
          ", upper bound " + std::to_string(UpperBound(array)));
  }
  return array.body->slots[static_cast<std::size_t>(index)];
}

void Store::SetInteger(ArrayThing* array, std::int64_t index, std::int64_t value,
                       const char* user) {
  static_cast<void>(Element(*array, index, user));
  array->body->slots[static_cast<std::size_t>(index)] = value;
  ShowFields(array);
}

void Store::Insert(ArrayThing* array, std::int64_t index, Thing* element, const char* user) {
  if (index < 0 || index > UpperBound(*array) + 1) {
    Fatal(std::string(user) + ": insertion at " + std::to_string(index) + " of " +
          Describe(*array) + ", upper bound " + std::to_string(UpperBound(*array)));
  }
  if (element != nullptr) Lock(element, user);
  auto& slots = array->body->slots;
  // The insertion may have moved the storage, so the fields that point to it are written again.
  slots.insert(slots.begin() + index, reinterpret_cast<std::int64_t>(element));
  ShowFields(array);
}

}  // namespace zqv::standin
