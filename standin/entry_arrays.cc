// The entry points for arrays, and the functions whose addresses they return.
#include <string>

#include "standin/entry_points.h"
#include "standin/fatal.h"
#include "standin/host.h"

namespace zqv::standin {
namespace {

constexpr std::int64_t kMaxUpperBound = 1 << 24;  // an upper bound above this is surely a mistake

// Returns the array. Fatal unless it is alive and its elements are of this type.
ArrayThing* Typed(const void* raw, int element_type, const char* user) {
  ArrayThing* const array = Host::Get(user).store().Array(raw, user);
  if (array->body->element_type == element_type) return array;
  Fatal(std::string(user) + ": the wrong kind of elements: " + Describe(*array));
}

void InsertObject(abi::REALarray array, abi::RBInteger index, abi::REALobject object) {
  const EntryScope scope;
  static constexpr const char* kName = "the array's insert procedure";
  Host& host = Host::Get(kName);
  Store& store = host.store();
  ArrayThing* const target = Typed(array, abi::kObjectElements, kName);
  const bool is_beyond = index > static_cast<abi::RBInteger>(target->body->slots.size());
  if (is_beyond && host.capabilities().refuses_insertion_beyond_the_end) return;
  Thing* const element = object == nullptr ? nullptr : store.Object(object, kName);
  store.Insert(target, index, element, kName);
}

abi::RBInteger GetInteger(abi::REALarray array, abi::RBInteger index) {
  const EntryScope scope;
  static constexpr const char* kName = "the array's get procedure";
  return Host::Get(kName).store().Element(*Typed(array, abi::kIntegerElements, kName), index,
                                          kName);
}

void SetInteger(abi::REALarray array, abi::RBInteger value, abi::RBInteger index) {
  const EntryScope scope;
  static constexpr const char* kName = "the array's set procedure";
  Host::Get(kName).store().SetInteger(Typed(array, abi::kIntegerElements, kName), index, value,
                                      kName);
}

// Returns the function, or null if the array's elements are of another type.
template <typename Procedure>
void* ProcedureFor(abi::REALarray raw, int element_type, Procedure* procedure, const char* user) {
  const ArrayThing* const array = Host::Get(user).store().Array(raw, user);
  return array->body->element_type == element_type ? reinterpret_cast<void*>(procedure) : nullptr;
}

}  // namespace

namespace entry {

RBInteger RuntimeUBound(void* array) {
  static constexpr const char* kName = "RuntimeUBound";
  Store& store = Host::Get(kName).store();
  return store.UpperBound(*store.Array(array, kName));
}

REALarray RuntimeArrayCreateSingleDimBoundedArray(int element_type, RBInteger upper_bound) {
  static constexpr const char* kName = "RuntimeArrayCreateSingleDimBoundedArray";
  if (element_type != abi::kObjectElements && element_type != abi::kIntegerElements) {
    Fatal(std::string(kName) + ": element type " + std::to_string(element_type));
  }
  if (upper_bound < -1 || upper_bound > kMaxUpperBound) {
    Fatal(std::string(kName) + ": upper bound " + std::to_string(upper_bound));
  }
  return ToHost(Host::Get(kName).store().NewArray(element_type, upper_bound, kName));
}

void* PluginObjectArrayInsertProc(REALarray array) {
  return ProcedureFor(array, abi::kObjectElements, &InsertObject, "PluginObjectArrayInsertProc");
}

REALobject RuntimeDirectReadObjectArray(REALarray array, RBInteger index) {
  static constexpr const char* kName = "RuntimeDirectReadObjectArray";
  Store& store = Host::Get(kName).store();
  const std::int64_t slot = store.Element(*Typed(array, abi::kObjectElements, kName), index, kName);
  if (slot == 0) return nullptr;
  Thing* const element = store.Object(reinterpret_cast<const void*>(slot), kName);
  store.Lock(element, kName);
  return ToHost(element);
}

void* PluginIntegerArrayGetProc(REALarray array) {
  return ProcedureFor(array, abi::kIntegerElements, &GetInteger, "PluginIntegerArrayGetProc");
}

void* PluginIntegerArraySetProc(REALarray array) {
  return ProcedureFor(array, abi::kIntegerElements, &SetInteger, "PluginIntegerArraySetProc");
}

}  // namespace entry
}  // namespace zqv::standin
