// The locks of handles. They are counted like all other locks.
#include "standin/handles.h"

#include <stdexcept>

#include "standin/convert.h"
#include "standin/host.h"

namespace zqv::standin {
namespace {

constexpr const char* kHandle = "application";

Store& CurrentStore() { return Host::Get(kHandle).store(); }

const ArrayThing& ArrayOf(const Object& object) {
  if (!object.IsArray()) throw std::invalid_argument("not an array");
  return *static_cast<const ArrayThing*>(object.thing());
}

}  // namespace

void AddLock(Thing* thing) {
  if (thing == nullptr) return;
  const HostLock lock;
  Store& store = CurrentStore();
  store.ledger().CheckAlive(thing, kHandle);
  store.Lock(thing, kHandle);
}

void GiveBack(Thing* thing) {
  if (thing == nullptr) return;
  const HostLock lock;
  Store& store = CurrentStore();
  store.ledger().CheckAlive(thing, kHandle);
  store.Unlock(thing, kHandle);
}

std::int64_t LocksOf(const Thing* thing) {
  if (thing == nullptr) return 0;
  const HostLock lock;
  return thing->LockCount();
}

std::optional<std::string> String::Utf8() const {
  if (IsNil()) return std::string();
  return Convert(bytes(), encoding(), abi::kUtf8);
}

const std::string& Object::ClassName() const {
  if (IsNil()) throw std::invalid_argument("nil has no class");
  return thing()->type->name;
}

bool Object::IsA(std::string_view class_name) const {
  if (IsNil()) throw std::invalid_argument("nil has no class");
  const ClassInfo* const own = ClassOf(*thing());
  const ClassInfo* const other = Host::Get(kHandle).classes().Find(class_name);
  return own != nullptr && other != nullptr && own->IsA(*other);
}

bool Object::IsArray() const { return !IsNil() && thing()->kind == ThingKind::kArray; }

std::int64_t Object::Size() const {
  const ArrayThing& array = ArrayOf(*this);
  const HostLock lock;
  return CurrentStore().UpperBound(array) + 1;
}

Value Object::At(std::int64_t index) const {
  const ArrayThing& array = ArrayOf(*this);
  const HostLock lock;
  Store& store = CurrentStore();
  if (index < 0 || index > store.UpperBound(array)) {
    throw std::out_of_range("index outside the array");
  }
  const std::int64_t slot = store.Element(array, index, kHandle);
  if (array.body->element_type != abi::kObjectElements) return slot;
  if (slot == 0) return std::monostate();
  Thing* const element = store.Object(reinterpret_cast<const void*>(slot), kHandle);
  store.Lock(element, kHandle);
  return Object::Adopt(element);
}

void Object::Append(const Object& element) const {
  if (ArrayOf(*this).body->element_type != abi::kObjectElements) {
    throw std::invalid_argument("not an array of objects");
  }
  auto* const array = static_cast<ArrayThing*>(thing());
  const HostLock lock;
  Store& store = CurrentStore();
  store.Insert(array, store.UpperBound(*array) + 1, element.thing(), kHandle);
}

}  // namespace zqv::standin
