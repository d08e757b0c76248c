// Reading members and calling methods, by the tables that the plug-in registered.
//
// A call of the plug-in has five steps: find the member, put the arguments into registers, call,
// take ownership of the result, throw the pending exception. Ownership comes before the exception,
// so that unwinding gives back the lock of the result.
#include "standin/application.h"

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "base/ascii.h"
#include "standin/convert.h"
#include "standin/fatal.h"
#include "standin/host.h"
#include "standin/invoke.h"

namespace zqv::standin {
namespace {

constexpr const char* kUser = "application";
constexpr std::string_view kConstructor = "Constructor";

[[noreturn]] void Refuse(const std::string& message) { throw std::invalid_argument(message); }

Host& TheHost() { return Host::Get(kUser); }

const ClassInfo& ClassNamed(std::string_view name) {
  const ClassInfo* const info = TheHost().classes().Find(name);
  if (info == nullptr) Refuse("there is no class " + std::string(name));
  return *info;
}

const ClassInfo& ClassOfObject(const Object& object) {
  if (object.IsNil()) Refuse("a member of nil");
  const ClassInfo* const info = ClassOf(*object.thing());
  if (info == nullptr) Refuse("an array has no members");
  return *info;
}

// Delivers the exception that one call of the plug-in raises. An exception that is pending before
// the call is counted as stray. One that is pending after the call belongs to it.
class Delivery {
 public:
  Delivery() : host_(TheHost()) { host_.DropStray(); }

  // Throws the pending exception as HostException, if there is one.
  void Deliver() const {
    NativeThing* const pending = host_.TakePending();
    if (pending == nullptr) return;
    const Object owner = Object::Adopt(pending);
    const auto& state = std::get<ExceptionState>(*pending->state);
    std::string message;
    if (state.message != nullptr) {
      const std::string_view bytes = state.message->bytes();
      message = Convert(bytes, state.message->encoding, abi::kUtf8).value_or(std::string(bytes));
    }
    throw HostException(owner.ClassName(), std::move(message), state.error_number);
  }

 private:
  Host& host_;
};

// The message for a result whose type is not the declared one.
std::string Expected(const std::string& name, const TypeText& type, const Thing& thing) {
  return name + ": the result is not " + type.name + (type.is_array ? "()" : "") + " but " +
         Describe(thing);
}

// Takes ownership of the one lock of a reference that the plug-in returned. Fatal when it is not of
// the declared type.
Value Receive(std::int64_t raw, TypeKind kind, const TypeText& type, const std::string& name) {
  if (raw == 0) return std::monostate();
  const HostLock lock;
  const Store& store = TheHost().store();
  const void* const pointer = reinterpret_cast<const void*>(raw);
  if (kind == TypeKind::kString) return String::Adopt(store.String(pointer, name.c_str()));
  Thing* const thing = store.Object(pointer, name.c_str());
  const ClassInfo* const info = ClassOf(*thing);
  bool fits = true;
  if (kind == TypeKind::kArray) {
    fits = thing->kind == ThingKind::kArray;
  } else if (kind == TypeKind::kObject) {
    const ClassInfo* const wanted = TheHost().classes().Find(type.name);
    fits = info != nullptr && wanted != nullptr && info->IsA(*wanted);
  }
  if (!fits) Fatal(Expected(name, type, *thing));
  return Object::Adopt(thing);
}

// Calls a function. `kind` is the type of its result, which decides the register that the result is
// in.
Value CallFor(TypeKind kind, const TypeText& type, abi::REALproc function,
              const CallArguments& arguments, const std::string& name) {
  switch (kind) {
    case TypeKind::kNothing:
      CallNothing(function, arguments, name);
      return std::monostate();
    case TypeKind::kBoolean:
      return CallBoolean(function, arguments, name);
    case TypeKind::kInteger:
      return CallInteger(function, arguments, name);
    case TypeKind::kDouble:
      return CallDouble(function, arguments, name);
    default:
      return Receive(CallInteger(function, arguments, name), kind, type, name);
  }
}

// Reads a property from the record, as the host does for a property without a getter. Adds a lock
// for the application.
Value ReadField(const ClassInfo& info, const Property& property, const Thing& object) {
  const std::string& name = property.full_name;
  if (info.definition->forSystemUse != static_cast<abi::RBInteger>(info.offset)) {
    Fatal(info.name + ": the definition's forSystemUse was changed");
  }
  const char* const start = static_cast<const char*>(static_cast<const void*>(&object));
  const char* const field = start + info.offset + property.row->param;
  if (property.kind == TypeKind::kBoolean) {
    if (*field != 0 && *field != 1) Fatal(name + ": neither 0 nor 1");
    return *field != 0;
  }
  std::int64_t raw = 0;
  std::memcpy(&raw, field, sizeof raw);
  if (property.kind == TypeKind::kInteger) return raw;
  if (property.kind == TypeKind::kDouble) {
    double number = 0;
    std::memcpy(&number, field, sizeof number);
    return number;
  }
  if (raw == 0) return std::monostate();
  {
    const HostLock lock;
    Store& store = TheHost().store();
    auto* const thing = reinterpret_cast<Thing*>(raw);
    store.ledger().CheckAlive(thing, name.c_str());
    store.Lock(thing, kUser);
  }
  return Receive(raw, property.kind, property.type, name);
}

// Calls a getter and throws the exception that it raised.
Value CallGetter(const Property& property, const CallArguments& arguments) {
  const Delivery delivery;
  Value value =
      CallFor(property.kind, property.type, property.row->getter, arguments, property.full_name);
  delivery.Deliver();
  return value;
}

// Reads a property of a native class. Runs no code of the plug-in.
Value ReadNative(const Object& object, const ClassInfo& info, std::string_view name) {
  const NativeProperty* const property =
      FindNativeProperty(info, name, TheHost().capabilities().missing_properties);
  if (property == nullptr) Refuse(info.name + " has no property " + std::string(name));
  const auto& thing = *static_cast<const NativeThing*>(object.thing());
  if (property->kind == TypeKind::kInteger) return ReadInteger(thing, *property);
  if (property->kind == TypeKind::kDouble) return ReadDouble(thing, *property);
  if (property->owner == NativeKind::kFolderItem) return MakeString(ReadPath(thing, *property));
  StringThing* const message = std::get<ExceptionState>(*thing.state).message;
  if (message == nullptr) return std::monostate();
  AddLock(message);
  return String::Adopt(message);
}

// A property, and the class or super class that has it.
struct FoundProperty {
  const ClassInfo* info;
  const Property* property;
};

// Searches a class and its super classes. `table` is the member of ClassInfo to search: the
// properties or the shared ones.
FoundProperty FindProperty(const ClassInfo& info, std::vector<Property> ClassInfo::*table,
                           std::string_view name) {
  for (const ClassInfo* c = &info; c != nullptr; c = c->super) {
    for (const Property& property : c->*table) {
      if (base::EqualsIgnoringCase(property.name, name)) return {c, &property};
    }
  }
  Refuse(info.name + " has no property " + std::string(name));
}

// Adds one argument to the call. False when its type does not match the parameter.
bool Marshal(const TypeText& type, const Value& value, CallArguments* call) {
  const TypeKind kind = KindOf(type);
  if (kind == TypeKind::kBoolean) {
    const bool* const boolean = std::get_if<bool>(&value);
    if (boolean != nullptr) call->Add(std::int64_t{*boolean});
    return boolean != nullptr;
  }
  if (kind == TypeKind::kInteger) {
    const std::int64_t* const integer = std::get_if<std::int64_t>(&value);
    if (integer != nullptr) call->Add(*integer);
    return integer != nullptr;
  }
  if (kind == TypeKind::kDouble) {
    const double* const number = std::get_if<double>(&value);
    if (number != nullptr) call->AddDouble(*number);
    return number != nullptr;
  }
  if (IsNil(value)) {
    call->Add(nullptr);
    return true;
  }
  if (kind == TypeKind::kString) {
    const String* const string = std::get_if<String>(&value);
    if (string != nullptr) call->Add(string->thing());
    return string != nullptr;
  }
  const Object* const object = std::get_if<Object>(&value);
  if (object == nullptr) return false;
  call->Add(object->thing());
  if (object->IsNil() || kind == TypeKind::kVariant) return true;
  return kind == TypeKind::kArray ? object->IsArray() : object->IsA(type.name);
}

// Adds all arguments. False when their number or a type does not match.
bool Marshal(const Declaration& declaration, const std::vector<Value>& values,
             CallArguments* call) {
  if (declaration.parameters.size() != values.size()) return false;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!Marshal(declaration.parameters[i].type, values[i], call)) return false;
  }
  return true;
}

// Whether a text has parameters or a result: true for "Parts as Thing()" and "Parts(...)", false
// for "Parts", which is only a name.
bool IsWholeDeclaration(std::string_view text, const Declaration& declaration) {
  return text.find('(') != std::string_view::npos || !declaration.result.name.empty();
}

// Finds the method whose registered declaration is exactly `text` and whose parameters accept the
// values. Searches the class only, not its super classes. Null when there is none. This is the fast
// path, so that a call costs no more than in a compiled application.
const Method* FindExactMethod(const std::vector<Method>& methods, std::string_view text,
                              const std::vector<Value>& values) {
  for (const Method& method : methods) {
    CallArguments scratch;
    if (text == method.row->declaration && Marshal(method.declaration, values, &scratch)) {
      return &method;
    }
  }
  return nullptr;
}

// Finds a method by name or by whole declaration in the class and its super classes. Throws unless
// exactly one method accepts the values.
const Method& FindOnlyMethod(const ClassInfo& info, std::vector<Method> ClassInfo::*table,
                             std::string_view text, const std::vector<Value>& values) {
  const std::optional<Declaration> wanted = ParseDeclaration(text);
  if (!wanted) Refuse("not a declaration: " + std::string(text));
  const bool whole = IsWholeDeclaration(text, *wanted);
  const Method* found = nullptr;
  bool name_exists = false;
  for (const ClassInfo* c = &info; c != nullptr && found == nullptr; c = c->super) {
    for (const Method& method : c->*table) {
      if (!base::EqualsIgnoringCase(method.declaration.name, wanted->name)) continue;
      name_exists = true;
      if (whole && !SameDeclaration(method.declaration, *wanted)) continue;
      CallArguments scratch;
      if (!Marshal(method.declaration, values, &scratch)) continue;
      if (found != nullptr) Refuse(std::string(text) + ": more than one method fits");
      found = &method;
    }
    // Constructors of a class hide those of its super class.
    if (name_exists && base::EqualsIgnoringCase(wanted->name, kConstructor)) break;
  }
  if (!name_exists) Refuse(info.name + " has no method " + std::string(text));
  if (found == nullptr) Refuse(std::string(text) + ": the arguments fit no such method");
  return *found;
}

const Method& FindMethod(const ClassInfo& info, std::vector<Method> ClassInfo::*table,
                         std::string_view text, const std::vector<Value>& values) {
  const Method* found = FindExactMethod(info.*table, text, values);
  if (found == nullptr) found = &FindOnlyMethod(info, table, text, values);
  if ((found->flags & (abi::kFlagPrivate | abi::kFlagProtected)) != 0) {
    Refuse(info.name + "." + std::string(text) + " is private");
  }
  return *found;
}

// Stores the lock counts of borrowed arguments before a call and compares them afterwards.
class BorrowCheck {
 public:
  explicit BorrowCheck(const std::vector<Value>& values) : values_(values) {
    locks_before_.reserve(values.size());
    const HostLock lock;
    handovers_ = HostLock::Handovers();
    for (const Value& value : values) locks_before_.push_back(CountLocks(value));
  }

  // Fatal when an argument has lost locks. Does nothing when another thread used the host
  // meanwhile, since it may have given back locks of its own. `name` is the method's.
  void Finish(const std::string& name) const {
    const HostLock lock;
    if (handovers_ != HostLock::Handovers()) return;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (CountLocks(values_[i]) >= locks_before_[i]) continue;
      Fatal(name + ": a borrowed argument has fewer locks after the call");
    }
  }

 private:
  static std::int64_t CountLocks(const Value& value) {
    const Thing* thing = nullptr;
    if (const auto* const string = std::get_if<String>(&value)) thing = string->thing();
    if (const auto* const object = std::get_if<Object>(&value)) thing = object->thing();
    return thing == nullptr ? 0 : thing->LockCount();
  }

  const std::vector<Value>& values_;
  std::vector<std::int64_t> locks_before_;
  std::uint64_t handovers_ = 0;
};

// Calls a method. `instance` is null for a shared method. The arguments must match the parameters.
Value Invoke(const Method& method, Thing* instance, const std::vector<Value>& values) {
  const std::string& name = method.full_name;
  CallArguments arguments;
  if (instance != nullptr) arguments.Add(instance);
  static_cast<void>(Marshal(method.declaration, values, &arguments));
  const BorrowCheck borrowed(values);
  const Delivery delivery;
  Value result =
      CallFor(method.result_kind, method.declaration.result, method.row->function, arguments, name);
  if (TheHost().CountsLocks()) borrowed.Finish(name);
  delivery.Deliver();
  return result;
}

NativeThing* NewNative(std::string_view class_name) {
  const ClassInfo& info = ClassNamed(class_name);
  const HostLock lock;
  return TheHost().store().NewNative(info, kUser);
}

StringThing* NewString(std::string_view bytes, abi::Encoding encoding) {
  const HostLock lock;
  return TheHost().store().NewString(bytes, encoding, kUser);
}

// Allocates exactly as many bytes as `bytes` has, so that reading beyond the end is detected.
Object NewMemoryBlock(std::string_view bytes, std::int64_t size) {
  NativeThing* const thing = NewNative("MemoryBlock");
  auto& block = std::get<MemoryBlock>(*thing->state);
  block.bytes = std::make_unique<char[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(block.bytes.get(), bytes.data(), bytes.size());
  block.size = size;
  return Object::Adopt(thing);
}

}  // namespace

HostException::HostException(std::string class_name_text, std::string message_text,
                             std::int64_t number)
    : class_name(std::move(class_name_text)),
      message(std::move(message_text)),
      error_number(number),
      what_(class_name + ": " + message) {}

String MakeString(std::string_view bytes, abi::Encoding encoding) {
  if (bytes.empty()) return {};
  return String::Adopt(NewString(bytes, encoding));
}

String MakeEmptyString(abi::Encoding encoding) { return String::Adopt(NewString({}, encoding)); }

Object MakeMemoryBlock(std::string_view bytes) {
  return NewMemoryBlock(bytes, static_cast<std::int64_t>(bytes.size()));
}

Object MakeMemoryBlockOfUnknownSize(std::string_view bytes) { return NewMemoryBlock(bytes, -1); }

Object MakeMemoryBlockWithoutPointer(std::int64_t size) {
  Object block = NewMemoryBlock({}, size);
  auto& state = *static_cast<NativeThing*>(block.thing())->state;
  std::get<MemoryBlock>(state).bytes.reset();
  return block;
}

Object MakeFolderItem(std::string_view path) {
  NativeThing* const thing = NewNative("FolderItem");
  *thing->state = FolderItem{std::string(path), FileUrl(path)};
  return Object::Adopt(thing);
}

Object NewInstance(std::string_view class_name) {
  const ClassInfo& info = ClassNamed(class_name);
  const HostLock lock;
  return Object::Adopt(TheHost().store().NewObject(info, kUser));
}

Value Get(const Object& object, std::string_view property) {
  const ClassInfo& info = ClassOfObject(object);
  if (info.native != NativeKind::kNone) return ReadNative(object, info, property);
  const FoundProperty found = FindProperty(info, &ClassInfo::properties, property);
  if (found.property->is_standard) {
    return ReadField(*found.info, *found.property, *object.thing());
  }
  CallArguments arguments;
  arguments.Add(object.thing());
  arguments.Add(std::int64_t{found.property->row->param});
  return CallGetter(*found.property, arguments);
}

Value GetShared(std::string_view class_name, std::string_view property) {
  const FoundProperty found =
      FindProperty(ClassNamed(class_name), &ClassInfo::shared_properties, property);
  return CallGetter(*found.property, {});
}

void SetShared(std::string_view class_name, std::string_view property, const Value& value) {
  const FoundProperty found =
      FindProperty(ClassNamed(class_name), &ClassInfo::shared_properties, property);
  if (found.property->row->setter == nullptr) Refuse(std::string(property) + " is read-only");
  CallArguments arguments;
  if (!Marshal(found.property->type, value, &arguments)) {
    Refuse(std::string(property) + ": the value does not fit");
  }
  const Delivery delivery;
  CallNothing(found.property->row->setter, arguments, found.property->full_name);
  delivery.Deliver();
}

Value CallWith(const Object& object, std::string_view method, const std::vector<Value>& arguments) {
  const ClassInfo& info = ClassOfObject(object);
  return Invoke(FindMethod(info, &ClassInfo::methods, method, arguments), object.thing(),
                arguments);
}

Value CallSharedWith(std::string_view class_name, std::string_view method,
                     const std::vector<Value>& arguments) {
  const ClassInfo& info = ClassNamed(class_name);
  return Invoke(FindMethod(info, &ClassInfo::shared_methods, method, arguments), nullptr,
                arguments);
}

Object ConstructWith(std::string_view class_name, std::string_view constructor,
                     const std::vector<Value>& arguments) {
  const ClassInfo& info = ClassNamed(class_name);
  const Method& found = FindMethod(info, &ClassInfo::methods, constructor, arguments);
  if (!base::EqualsIgnoringCase(found.declaration.name, kConstructor)) {
    Refuse(std::string(constructor) + " is no constructor");
  }
  Object object = NewInstance(class_name);
  Invoke(found, object.thing(), arguments);
  return object;
}

abi::REALproc FunctionOf(std::string_view class_name, std::string_view declaration) {
  const std::optional<Declaration> wanted = ParseDeclaration(declaration);
  const ClassInfo& info = ClassNamed(class_name);
  for (const auto* table : {&info.methods, &info.shared_methods}) {
    for (const Method& method : *table) {
      if (wanted && SameDeclaration(method.declaration, *wanted)) return method.row->function;
    }
  }
  Refuse(info.name + " has no method " + std::string(declaration));
}

std::string BytesOf(const Value& value) {
  return IsNil(value) ? std::string() : std::string(std::get<String>(value).bytes());
}

Object ObjectOf(const Value& value) { return IsNil(value) ? Object() : std::get<Object>(value); }

}  // namespace zqv::standin
