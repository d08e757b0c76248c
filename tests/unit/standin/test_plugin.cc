// A small plug-in of test classes. On request it breaks the rules of the interface.
//
// Animal has a record with every kind of field. Dog derives from it without a record of its own. An
// application cannot construct a Keeper.
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "abi/encodings.h"
#include "abi/records.h"

namespace {

using namespace zqv::abi;

struct Animal {
  REALstring name;
  REALobject friend_object;
  REALarray friends;
  RBInteger legs;
  double weight;
  RBBoolean tame;
};
static_assert(sizeof(Animal) == 48);

Resolver resolver = nullptr;
std::string destroyed;
RBBoolean verbose = 0;
bool lock_in_destructor = false;
bool unlock_in_destructor = false;

extern REALclassDefinition animal_class;
extern REALclassDefinition dog_class;

#define ZQV_ENTRY_POINT(name, result, arguments, ownership)   \
  using name##Function = result(*) arguments;                 \
  [[maybe_unused]] name##Function name() {                    \
    return reinterpret_cast<name##Function>(resolver(#name)); \
  }
#include "abi/entry_points.def"

char* Memory(REALobject object) { return static_cast<char*>(static_cast<void*>(object)); }

Animal& Record(REALobject object) {
  return *static_cast<Animal*>(static_cast<void*>(Memory(object) + animal_class.forSystemUse));
}

std::string Text(REALstring string) {
  if (string == nullptr) return {};
  using Length = RBInteger (*)(REALstring);
  const auto length =
      reinterpret_cast<Length>(REALLoadGlobalMethod()(nullptr, "LenB( s as string ) as integer"));
  return {static_cast<const char*>(StringGetCString()(string)),
          static_cast<std::size_t>(length(string))};
}

REALstring NewString(const std::string& text) {
  return REALBuildStringWithEncoding()(text.data(), static_cast<int>(text.size()), kUtf8);
}

REALobject AsObject(REALarray array) { return reinterpret_cast<REALobject>(array); }

REALobject GetFriendsVariant(REALobject self) {
  REALLockObject()(AsObject(Record(self).friends));
  return AsObject(Record(self).friends);
}
RBInteger GetCount(REALobject self) {
  const REALarray friends = Record(self).friends;
  return friends == nullptr ? 0 : RuntimeUBound()(friends) + 1;
}
REALstring GetLoudName(REALobject self) { return NewString(Text(Record(self).name) + "!"); }
double GetHalf(REALobject self) { return static_cast<double>(Record(self).legs) / 2; }
RBBoolean GetIsBig(REALobject self) { return Record(self).weight > 100 ? 1 : 0; }
RBInteger GetParam(REALobject, RBInteger param) { return param; }
REALobject GetBorn(REALobject) {
  const REALobject date = PluginNewInstance()("Date");
  REALSetPropValueDouble()(date, "TotalSeconds", 86'400.0);
  return date;
}

REALobject FriendsArray(REALobject self) { return GetFriendsVariant(self); }
REALobject FriendAt(REALobject self, RBInteger index) {
  if (index >= 0 && index < GetCount(self)) {
    return RuntimeDirectReadObjectArray()(Record(self).friends, index);
  }
  const REALobject exception = PluginNewInstance()("OutOfBoundsException");
  RuntimeRaiseException()(exception);
  REALUnlockObject()(exception);
  return nullptr;
}
void ConstructFromString(REALobject self, REALstring name) {
  REALLockString()(name);
  Animal& record = Record(self);
  record.name = name;
  record.legs = 4;
  record.weight = 12.5;
  record.friends = RuntimeArrayCreateSingleDimBoundedArray()(kObjectElements, -1);
}
void ConstructFromBlock(REALobject self, REALobject block) {
  const auto size = static_cast<int>(memoryBlockGetSize()(block));
  Record(self).name = REALBuildString()(static_cast<char*>(memoryBlockGetPtr()(block)), size);
}
void ConstructFailing(REALobject self, RBInteger legs) {
  Record(self).legs = legs;
  const REALobject exception = PluginNewInstance()("OutOfMemoryException");
  RuntimeRaiseException()(exception);
  REALUnlockObject()(exception);
}
void Befriend(REALobject self, REALobject other) {
  Animal& record = Record(self);
  REALLockObject()(other);
  REALUnlockObject()(record.friend_object);
  record.friend_object = other;
  reinterpret_cast<ObjectArrayInsertProc>(PluginObjectArrayInsertProc()(record.friends))(
      record.friends, RuntimeUBound()(record.friends) + 1, other);
}
RBInteger Add(REALobject, RBInteger a, RBInteger b) { return a + b; }
double Mix(REALobject, double a, RBInteger b, double c) {
  return a * 100 + static_cast<double>(b) * 10 + c;
}
RBBoolean Invert(REALobject, RBBoolean value) { return value == 0 ? 1 : 0; }
REALobject Echo(REALobject, REALobject value) {
  REALLockObject()(value);
  return value;
}

void Raise(REALstring class_name, REALstring message) {
  const REALobject exception = PluginNewInstance()(Text(class_name).c_str());
  REALSetPropValueString()(exception, "Message", message);
  REALSetPropValueInteger()(exception, "ErrorNumber", 17);
  RuntimeRaiseException()(exception);
  REALUnlockObject()(exception);
}
REALstring RaiseAndReturn(REALobject, REALstring class_name, REALstring message) {
  Raise(class_name, message);
  return NewString("unwanted");
}

REALobject Misuse(REALobject self, REALstring what) {
  const std::string kind = Text(what);
  if (kind == "throw") throw std::runtime_error("thrown");
  if (kind == "throw int") throw 7;
  if (kind == "unlock argument") REALUnlockString()(what);
  if (kind == "return string") return reinterpret_cast<REALobject>(NewString("x"));
  if (kind == "write trap") Memory(self)[dog_class.forSystemUse] = 1;
  if (kind == "write before record") Memory(self)[animal_class.forSystemUse - 1] = 1;
  if (kind == "move record") ++animal_class.forSystemUse;
  if (kind == "dangling name") REALUnlockString()(Record(self).name);
  if (kind == "bad tame") Record(self).tame = 2;
  if (kind == "lock in destructor") lock_in_destructor = true;
  if (kind == "unlock in destructor") unlock_in_destructor = true;
  return nullptr;
}
RBInteger BadBoolean(REALobject) { return 2; }
REALobject WrongClass(REALobject) { return PluginNewInstance()("Date"); }

void DestroyAnimal(REALobject self) {
  destroyed += "A";
  if (lock_in_destructor) REALLockObject()(self);
  if (unlock_in_destructor) REALUnlockObject()(self);
  Animal& record = Record(self);
  REALUnlockString()(record.name);
  REALUnlockObject()(record.friend_object);
  REALUnlockObject()(AsObject(record.friends));
}
void DestroyDog(REALobject) { destroyed += "D"; }
REALstring Bark(REALobject) { return NewString("woof"); }
REALobject GetKeeper(REALobject) { return PluginNewInstance()("Keeper"); }
void ConstructNothing(REALobject) {}

REALstring GetMood(REALobject) {
  const REALobject exception = PluginNewInstance()("IOException");
  RuntimeRaiseException()(exception);
  REALUnlockObject()(exception);
  return NewString("unwanted");
}

REALstring GetDestroyed() { return destroyed.empty() ? nullptr : NewString(destroyed); }
RBBoolean GetVerbose() { return verbose; }
void SetVerbose(RBBoolean value) { verbose = value; }
REALstring Twice(REALstring text) { return RuntimeAddString()(text, text); }

template <typename Function>
REALproc Proc(Function* function) {
  return reinterpret_cast<REALproc>(function);
}
const REALproc kRecordGetter = reinterpret_cast<REALproc>(~std::uintptr_t{0});

REALproperty Field(const char* name, const char* type, std::size_t offset) {
  return {nullptr, name, type,    0x6, kRecordGetter, nullptr, static_cast<std::int32_t>(offset),
          nullptr, 0,    nullptr, 0,   nullptr};
}
REALproperty Getter(const char* name, const char* type, REALproc getter, std::int32_t param = 0) {
  return {nullptr, name, type, 0x6, getter, nullptr, param, nullptr, 0, nullptr, 0, nullptr};
}
REALmethodDefinition Method(const char* declaration, REALproc function, std::uint32_t flags = 0x4) {
  return {function, nullptr, declaration, flags, 0, nullptr};
}

REALattribute hidden[] = {{"Hidden", ""}};

REALproperty animal_properties[] = {
    Field("Name", "String", offsetof(Animal, name)),
    Field("Friend", "Animal", offsetof(Animal, friend_object)),
    Field("Legs", "Integer", offsetof(Animal, legs)),
    Field("Weight", "Double", offsetof(Animal, weight)),
    Field("Tame", "Boolean", offsetof(Animal, tame)),
    Getter("FriendsVariant", "Variant", Proc(&GetFriendsVariant)),
    Getter("Count", "Integer", Proc(&GetCount)),
    Getter("LoudName", "String", Proc(&GetLoudName)),
    Getter("Half", "Double", Proc(&GetHalf)),
    Getter("IsBig", "Boolean", Proc(&GetIsBig)),
    Getter("Born", "Date", Proc(&GetBorn)),
    Getter("Param", "Integer", Proc(&GetParam), 99),
};
REALmethodDefinition animal_methods[] = {
    Method("Friends as Animal()", Proc(&FriendsArray)),
    Method("Friends(index as Integer) as Animal", Proc(&FriendAt)),
    Method("Constructor(Name as String)", Proc(&ConstructFromString)),
    Method("Constructor(Block as MemoryBlock)", Proc(&ConstructFromBlock)),
    Method("Constructor(Legs as Integer)", Proc(&ConstructFailing)),
    Method("Befriend(other as Animal)", Proc(&Befriend)),
    Method("Add(a as Integer, b as Integer) as Integer", Proc(&Add)),
    Method("Mix(a as Double, b as Integer, c as Double) as Double", Proc(&Mix)),
    Method("Invert(value as Boolean) as Boolean", Proc(&Invert)),
    Method("Echo(value as Variant) as Variant", Proc(&Echo)),
    Method("Raise(kind as String, message as String) as String", Proc(&RaiseAndReturn)),
    Method("Misuse(what as String) as Variant", Proc(&Misuse)),
    Method("BadBoolean as Boolean", Proc(&BadBoolean)),
    Method("WrongClass as Animal", Proc(&WrongClass)),
    Method("Hide", Proc(&ConstructNothing), 0x44),
};
REALproperty animal_shared[] = {
    Getter("Destroyed", "String", Proc(&GetDestroyed)),
    {nullptr, "Verbose", "Boolean", 0x26, Proc(&GetVerbose), Proc(&SetVerbose), 0, nullptr, 0,
     nullptr, 1, hidden},
};
REALmethodDefinition animal_shared_methods[] = {
    Method("Twice(text as String) as String", Proc(&Twice)),
};
REALproperty dog_properties[] = {Getter("Keeper", "Keeper", Proc(&GetKeeper))};
REALmethodDefinition dog_methods[] = {Method("Bark as String", Proc(&Bark))};
REALproperty keeper_properties[] = {Getter("Mood", "String", Proc(&GetMood))};
REALmethodDefinition keeper_methods[] = {Method("Constructor", Proc(&ConstructNothing), 0x84)};

REALclassDefinition Class(const char* name, const char* super, std::size_t size,
                          REALproc destructor) {
  REALclassDefinition definition{};
  definition.version = 13;
  definition.name = name;
  definition.superName = super;
  definition.dataSize = size;
  definition.destructor = destructor;
  definition.flags = 4;
  return definition;
}
REALclassDefinition animal_class = Class("Animal", nullptr, sizeof(Animal), Proc(&DestroyAnimal));
REALclassDefinition dog_class = Class("Dog", "Animal", 0, Proc(&DestroyDog));
REALclassDefinition keeper_class = Class("Keeper", nullptr, 16, nullptr);

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(Resolver given) {
  resolver = given;
  if (resolver == nullptr) return;
  destroyed.clear();
  animal_class.properties = animal_properties;
  animal_class.propertyCount = std::size(animal_properties);
  animal_class.methods = animal_methods;
  animal_class.methodCount = std::size(animal_methods);
  animal_class.sharedProperties = animal_shared;
  animal_class.sharedPropertyCount = std::size(animal_shared);
  animal_class.sharedMethods = animal_shared_methods;
  animal_class.sharedMethodCount = std::size(animal_shared_methods);
  dog_class.properties = dog_properties;
  dog_class.propertyCount = std::size(dog_properties);
  dog_class.methods = dog_methods;
  dog_class.methodCount = std::size(dog_methods);
  keeper_class.properties = keeper_properties;
  keeper_class.propertyCount = std::size(keeper_properties);
  keeper_class.methods = keeper_methods;
  keeper_class.methodCount = std::size(keeper_methods);
  RegisterPluginVersion()(13);
  for (REALclassDefinition* definition : {&animal_class, &dog_class, &keeper_class}) {
    if (const auto register_class = PluginRegisterClass()) register_class(definition);
  }
}
