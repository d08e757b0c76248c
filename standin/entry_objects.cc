// The entry points for start-up, registration, objects, locks and exceptions, and for the
// properties and methods of native classes.
#include <array>
#include <optional>
#include <string>

#include "standin/convert.h"
#include "standin/entry_points.h"
#include "standin/fatal.h"
#include "standin/host.h"
#include "standin/text.h"

namespace zqv::standin {
namespace {

// The declarations of Date's two constructors. Only exactly these texts find them.
constexpr std::string_view kSevenArguments =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, Hour as Integer, "
    "Minute as Integer, Second as Integer, GMTOffset as Double)";
constexpr std::string_view kSixArguments =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, hour as Integer, "
    "minute as Integer, second as Integer)";

void SetDate(abi::REALobject object, const Date::Fields& fields) {
  const EntryScope scope;
  static constexpr const char* kName = "Date.Constructor";
  NativeThing* const thing = Host::Get(kName).store().Native(object, NativeKind::kDate, kName);
  std::get<Date>(*thing->state).SetFields(fields);
}

void ConstructDate6(abi::REALobject object, abi::RBInteger year, abi::RBInteger month,
                    abi::RBInteger day, abi::RBInteger hour, abi::RBInteger minute,
                    abi::RBInteger second) {
  SetDate(object, {year, month, day, hour, minute, second});
}

// Ignores the last argument, the offset from UTC: a date does not store its time zone.
void ConstructDate7(abi::REALobject object, abi::RBInteger year, abi::RBInteger month,
                    abi::RBInteger day, abi::RBInteger hour, abi::RBInteger minute,
                    abi::RBInteger second, double) {
  SetDate(object, {year, month, day, hour, minute, second});
}

// An object of a native class and one of its properties. `property` is null when there is no such
// property of the wanted type.
struct Target {
  NativeThing* thing = nullptr;
  const NativeProperty* property = nullptr;
};

// Finds a property by name. An unknown name is not a mistake: the entry point returns 0. Fatal when
// the object is not alive or `name` is null.
Target FindTarget(abi::REALobject object, const char* name, TypeKind kind, const char* user) {
  Host& host = Host::Get(user);
  Thing* const thing = host.store().Object(object, user);
  if (name == nullptr) Fatal(std::string(user) + ": the property's name is null");
  const ClassInfo* const info = ClassOf(*thing);
  if (info == nullptr || info->native == NativeKind::kNone) return {};
  const NativeProperty* const property =
      FindNativeProperty(*info, name, host.capabilities().missing_properties);
  if (property == nullptr || property->kind != kind) return {};
  return {static_cast<NativeThing*>(thing), property};
}

void CheckOut(const void* out, const char* user) {
  if (out == nullptr) Fatal(std::string(user) + ": the result's address is null");
}

}  // namespace

namespace entry {

double REALGetRBVersion() { return Host::Get("REALGetRBVersion").capabilities().version; }

void RegisterPluginVersion(int version) {
  Host::Get("RegisterPluginVersion").classes().AnnounceVersion(version);
}

RBInteger PluginRegisterClass(REALclassDefinition* definition) {
  static constexpr const char* kName = "PluginRegisterClass";
  return Host::Get(kName).classes().Register(definition, kName) ? 1 : 0;
}

REALobject PluginNewInstance(const char* class_name) {
  static constexpr const char* kName = "PluginNewInstance";
  if (class_name == nullptr) Fatal("PluginNewInstance: the class name is null");
  Host& host = Host::Get(kName);
  const ClassInfo* const info = host.classes().Find(class_name);
  if (info == nullptr || host.IsUnknownClass(class_name)) return nullptr;
  return ToHost(host.store().NewObject(*info, kName));
}

void REALLockObject(REALobject object) {
  static constexpr const char* kName = "REALLockObject";
  if (object == nullptr) return;
  Store& store = Host::Get(kName).store();
  store.Lock(store.Object(object, kName), kName);
}

void REALUnlockObject(REALobject object) {
  static constexpr const char* kName = "REALUnlockObject";
  if (object == nullptr) return;
  Store& store = Host::Get(kName).store();
  store.Unlock(store.Object(object, kName), kName);
}

void REALLockString(REALstring string) {
  static constexpr const char* kName = "REALLockString";
  if (string == nullptr) return;
  Store& store = Host::Get(kName).store();
  store.Lock(store.String(string, kName), kName);
}

void REALUnlockString(REALstring string) {
  static constexpr const char* kName = "REALUnlockString";
  if (string == nullptr) return;
  Store& store = Host::Get(kName).store();
  store.Unlock(store.String(string, kName), kName);
}

void* REALLoadObjectMethod(REALobject object, const char* declaration) {
  static constexpr const char* kName = "REALLoadObjectMethod";
  Host& host = Host::Get(kName);
  const ClassInfo* const info = ClassOf(*host.store().Object(object, kName));
  if (declaration == nullptr) Fatal("REALLoadObjectMethod: the declaration is null");
  if (info == nullptr || info->native != NativeKind::kDate) return nullptr;
  const DateFlavour flavour = host.capabilities().date_flavour;
  if (flavour == DateFlavour::kSevenArguments && kSevenArguments == declaration) {
    return reinterpret_cast<void*>(&ConstructDate7);
  }
  if (flavour == DateFlavour::kSixArguments && kSixArguments == declaration) {
    return reinterpret_cast<void*>(&ConstructDate6);
  }
  return nullptr;
}

// Makes a string in the encoding of this host's paths.
StringThing* NewPath(const std::string& path, Host& host, const char* creator) {
  const abi::Encoding label = host.capabilities().path_encoding;
  const abi::Encoding encoding = label == abi::kUnknownEncoding ? abi::kMacRoman : label;
  const std::optional<std::string> bytes = Convert(path, abi::kUtf8, encoding);
  return bytes ? host.store().NewString(*bytes, label, creator)
               : host.store().NewString(path, abi::kUtf8, creator);
}

long REALGetPropValueString(REALobject object, const char* name, REALstring* out) {
  static constexpr const char* kName = "REALGetPropValueString";
  CheckOut(out, kName);
  const Target target = FindTarget(object, name, TypeKind::kString, kName);
  if (target.property == nullptr) return 0;
  Store& store = Host::Get(kName).store();
  if (target.property->owner == NativeKind::kException) {
    StringThing* const message = std::get<ExceptionState>(*target.thing->state).message;
    if (message != nullptr) store.Lock(message, kName);
    *out = ToHost(message);
  } else {
    const std::string& path = ReadPath(*target.thing, *target.property);
    *out = path.empty() ? nullptr : ToHost(NewPath(path, Host::Get(kName), kName));
  }
  return 1;
}

long REALGetPropValueDouble(REALobject object, const char* name, double* out) {
  static constexpr const char* kName = "REALGetPropValueDouble";
  CheckOut(out, kName);
  const Target target = FindTarget(object, name, TypeKind::kDouble, kName);
  if (target.property == nullptr) return 0;
  *out = ReadDouble(*target.thing, *target.property);
  return 1;
}

RBBoolean REALSetPropValueString(REALobject object, const char* name, REALstring value) {
  static constexpr const char* kName = "REALSetPropValueString";
  const Target target = FindTarget(object, name, TypeKind::kString, kName);
  if (target.property == nullptr || target.property->owner != NativeKind::kException) return 0;
  Store& store = Host::Get(kName).store();
  StringThing* const message = value == nullptr ? nullptr : store.String(value, kName);
  if (message != nullptr) store.Lock(message, kName);
  auto& state = std::get<ExceptionState>(*target.thing->state);
  if (state.message != nullptr) store.Unlock(state.message, kName);
  state.message = message;
  return 1;
}

RBBoolean REALSetPropValueInteger(REALobject object, const char* name, RBInteger value) {
  const Target target = FindTarget(object, name, TypeKind::kInteger, "REALSetPropValueInteger");
  return target.property != nullptr && WriteInteger(target.thing, *target.property, value) ? 1 : 0;
}

RBBoolean REALSetPropValueDouble(REALobject object, const char* name, double value) {
  const Target target = FindTarget(object, name, TypeKind::kDouble, "REALSetPropValueDouble");
  return target.property != nullptr && WriteDouble(target.thing, *target.property, value) ? 1 : 0;
}

void RuntimeRaiseException(REALobject exception) {
  static constexpr const char* kName = "RuntimeRaiseException";
  Host& host = Host::Get(kName);
  host.Raise(host.store().Native(exception, NativeKind::kException, kName));
}

void* memoryBlockGetPtr(REALobject block) {
  static constexpr const char* kName = "memoryBlockGetPtr";
  const NativeThing* const thing =
      Host::Get(kName).store().Native(block, NativeKind::kMemoryBlock, kName);
  return std::get<MemoryBlock>(*thing->state).bytes.get();
}

RBInteger memoryBlockGetSize(REALobject block) {
  static constexpr const char* kName = "memoryBlockGetSize";
  const NativeThing* const thing =
      Host::Get(kName).store().Native(block, NativeKind::kMemoryBlock, kName);
  return std::get<MemoryBlock>(*thing->state).size;
}

}  // namespace entry
}  // namespace zqv::standin
