// The locks behind the handles. A handle's lock is counted as any other; only its user's name in a
// message differs.
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
  Store& store = CurrentStore();
  store.ledger().CheckAlive(thing, kHandle);
  store.Lock(thing, kHandle);
}

void GiveBack(Thing* thing) {
  if (thing == nullptr) return;
  Store& store = CurrentStore();
  store.ledger().CheckAlive(thing, kHandle);
  store.Unlock(thing, kHandle);
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

std::int64_t Object::Size() const { return CurrentStore().UpperBound(ArrayOf(*this)) + 1; }

Value Object::At(std::int64_t index) const {
  const ArrayThing& array = ArrayOf(*this);
  if (index < 0 || index >= Size()) throw std::out_of_range("index outside the array");
  const std::int64_t slot = CurrentStore().Element(array, index, kHandle);
  if (array.body->element_type != abi::kObjectElements) return slot;
  if (slot == 0) return std::monostate();
  Thing* const element = CurrentStore().Object(reinterpret_cast<const void*>(slot), kHandle);
  AddLock(element);
  return Object::Adopt(element);
}

void Object::Append(const Object& element) const {
  if (ArrayOf(*this).body->element_type != abi::kObjectElements) {
    throw std::invalid_argument("not an array of objects");
  }
  auto* const array = static_cast<ArrayThing*>(thing());
  CurrentStore().Insert(array, Size(), element.thing(), kHandle);
}

}  // namespace zqv::standin
