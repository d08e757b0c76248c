// Registration of classes: parses and checks each row of a definition's tables, then chooses the
// place of the record.
//
// A type may name a class that is registered later, so CheckTypes looks up type names at the end.
// In an instance the records follow the head, the super class's first. Between them are gaps that
// belong to nobody, so that access with a wrong offset is detected.
#include "standin/class_table.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "base/ascii.h"
#include "standin/fatal.h"

namespace zqv::standin {
namespace {

constexpr std::size_t kRecordAlignment = 16;
constexpr std::size_t kFirstOffset = 64;  // leaves a gap after the head
constexpr std::uint32_t kFirstVersionWithDelegates = 11;

// The types that are not classes.
struct BuiltInType {
  const char* name;
  TypeKind kind;
};
constexpr std::array kBuiltInTypes = {
    BuiltInType{"String", TypeKind::kString},   BuiltInType{"Boolean", TypeKind::kBoolean},
    BuiltInType{"Integer", TypeKind::kInteger}, BuiltInType{"Double", TypeKind::kDouble},
    BuiltInType{"Variant", TypeKind::kVariant},
};

// The host's own classes. A super class must be above its subclasses.
struct NativeClass {
  const char* name;
  const char* super;  // null: it has none
  NativeKind kind;
};
constexpr std::array kNativeClasses = {
    NativeClass{"Date", nullptr, NativeKind::kDate},
    NativeClass{"MemoryBlock", nullptr, NativeKind::kMemoryBlock},
    NativeClass{"FolderItem", nullptr, NativeKind::kFolderItem},
    NativeClass{"RuntimeException", nullptr, NativeKind::kException},
    NativeClass{"OutOfBoundsException", "RuntimeException", NativeKind::kException},
    NativeClass{"OutOfMemoryException", "RuntimeException", NativeKind::kException},
    NativeClass{"IOException", "RuntimeException", NativeKind::kException},
    NativeClass{"UnsupportedFormatException", "RuntimeException", NativeKind::kException},
    NativeClass{"UnsupportedOperationException", "RuntimeException", NativeKind::kException},
};

// Checks one definition. Every message begins with the entry point and the class name.
class Checker {
 public:
  Checker(std::string prefix, const abi::REALclassDefinition& definition)
      : prefix_(std::move(prefix)), definition_(definition) {}

  void Require(bool condition, const std::string& message) const {
    if (!condition) Fatal(prefix_ + ": " + message);
  }

  // Fatal unless the table is null exactly when it has no rows.
  void CheckTable(const char* what, const void* table, std::size_t count) const {
    Require((table != nullptr) == (count > 0),
            std::string(what) + ": the table and its count do not agree");
  }

  // Fatal unless the table is absent: this host does not know its kind of member.
  void CheckUnused(const char* what, const void* table, std::size_t count) const {
    Require(table == nullptr && count == 0, std::string(what) + " must be null and 0");
  }

  // The last two tables are in the part of a definition that lower versions do not have.
  void CheckTables() const {
    const abi::REALclassDefinition& d = definition_;
    CheckTable("properties", d.properties, d.propertyCount);
    CheckTable("methods", d.methods, d.methodCount);
    CheckTable("shared properties", d.sharedProperties, d.sharedPropertyCount);
    CheckTable("shared methods", d.sharedMethods, d.sharedMethodCount);
    CheckTable("attributes", d.attributes, d.attributeCount);
    CheckUnused("events", d.events, d.eventCount);
    CheckUnused("event instances", d.eventInstances, d.eventInstanceCount);
    CheckUnused("constants", d.constants, d.constantCount);
    CheckUnused("interfaces", d.interfaces, 0);
    if (d.version < kFirstVersionWithDelegates) return;
    CheckUnused("delegates", d.delegates, d.delegateCount);
    CheckUnused("enums", d.enums, d.enumCount);
  }

  void CheckAttributes(const std::string& member, const abi::REALattribute* attributes,
                       std::size_t count) const {
    CheckTable((member + ": attributes").c_str(), attributes, count);
    for (std::size_t i = 0; i < count; ++i) {
      Require(attributes[i].name != nullptr && attributes[i].value != nullptr,
              member + ": an attribute without name or value");
    }
  }

  // Parses a row of a property table. `shared` tells that it is the table of shared properties.
  Property Read(const abi::REALproperty& row, bool shared) const {
    Require(row.name != nullptr && *row.name != '\0', "a property without a name");
    const std::string name = row.name;
    Require(row.type != nullptr && *row.type != '\0', name + ": no type");
    const std::optional<Declaration> as_type = ParseDeclaration("x as " + std::string(row.type));
    Require(as_type.has_value() && ParseDeclaration(row.name).has_value(),
            name + ": name or type is not well-formed");
    Property property{
        row.name, FullName(name), as_type->result, KindOf(as_type->result), row.flags, false, &row};
    Require(row.getter != nullptr, name + ": no getter");
    property.is_standard = IsAllBitsSet(row.getter);
    Require(!IsAllBitsSet(row.setter), name + ": the standard setter is not offered");
    Require(row.editor == nullptr && row.enumEntries == nullptr && row.enumCount == 0,
            name + ": an editor or enumeration entries");
    CheckAttributes(name, row.attributes, row.attributeCount);
    if (property.is_standard) {
      Require(!shared, name + ": a shared property with the standard getter");
      CheckField(property);
    }
    return property;
  }

  Method Read(const abi::REALmethodDefinition& row) const {
    Require(row.declaration != nullptr, "a method without a declaration");
    const std::string text = row.declaration;
    std::optional<Declaration> declaration = ParseDeclaration(text);
    Require(declaration.has_value(), "the declaration \"" + text + "\" is not well-formed");
    Require(row.function != nullptr, text + ": no function");
    Require(row.setterFunction == nullptr, text + ": a setter function");
    CheckAttributes(text, row.attributes, row.attributeCount);
    const TypeKind kind = KindOf(declaration->result);
    std::string full_name = FullName(declaration->name);
    return Method{std::move(*declaration), std::move(full_name), kind, row.flags, &row};
  }

 private:
  static bool IsAllBitsSet(abi::REALproc function) {
    return reinterpret_cast<std::uintptr_t>(function) == std::numeric_limits<std::uintptr_t>::max();
  }

  std::string FullName(const std::string& member) const {
    return std::string(definition_.name) + "." + member;
  }

  // Fatal unless the field that the host reads lies inside the record.
  void CheckField(const Property& property) const {
    const std::string name(property.name);
    const std::size_t size = property.kind == TypeKind::kBoolean ? sizeof(abi::RBBoolean) : 8;
    Require(property.row->param >= 0, name + ": the field's offset is negative");
    const auto param = static_cast<std::size_t>(property.row->param);
    Require(param + size <= definition_.dataSize, name + ": the field lies outside the record");
    Require(param % size == 0, name + ": the field is not aligned");
  }

  const std::string prefix_;
  const abi::REALclassDefinition& definition_;
};

// Fatal when two properties have the same name, two methods the same signature, or a method and a
// property the same name. Shared members count, too.
void CheckDuplicates(const ClassInfo& info, const Checker& checker) {
  std::set<std::string> properties;
  std::set<std::string> signatures;
  for (const auto* table : {&info.properties, &info.shared_properties}) {
    for (const Property& property : *table) {
      checker.Require(properties.insert(LowerName(property.name)).second,
                      std::string(property.name) + ": a second property of this name");
    }
  }
  for (const auto* table : {&info.methods, &info.shared_methods}) {
    for (const Method& method : *table) {
      checker.Require(signatures.insert(Signature(method.declaration)).second,
                      std::string(method.row->declaration) + ": a second such method");
      checker.Require(properties.count(LowerName(method.declaration.name)) == 0,
                      method.declaration.name + ": a method and a property of this name");
    }
  }
}

// Fills the four tables of `info`. Fatal at the first row that is wrong.
void ReadMembers(const abi::REALclassDefinition& d, const Checker& checker, ClassInfo* info) {
  for (std::size_t i = 0; i < d.propertyCount; ++i) {
    info->properties.push_back(checker.Read(d.properties[i], false));
  }
  for (std::size_t i = 0; i < d.methodCount; ++i) {
    info->methods.push_back(checker.Read(d.methods[i]));
  }
  for (std::size_t i = 0; i < d.sharedPropertyCount; ++i) {
    info->shared_properties.push_back(checker.Read(d.sharedProperties[i], true));
  }
  for (std::size_t i = 0; i < d.sharedMethodCount; ++i) {
    info->shared_methods.push_back(checker.Read(d.sharedMethods[i]));
  }
  CheckDuplicates(*info, checker);
}

}  // namespace

TypeKind KindOf(const TypeText& type) {
  if (type.name.empty()) return TypeKind::kNothing;
  if (type.is_array) return TypeKind::kArray;
  for (const BuiltInType& row : kBuiltInTypes) {
    if (base::EqualsIgnoringCase(row.name, type.name)) return row.kind;
  }
  return TypeKind::kObject;
}

bool ClassInfo::IsA(const ClassInfo& other) const {
  for (const ClassInfo* info = this; info != nullptr; info = info->super) {
    if (info == &other) return true;
  }
  return false;
}

ClassTable::ClassTable() {
  for (const NativeClass& row : kNativeClasses) {
    Add(row.name, row.super == nullptr ? nullptr : Find(row.super))->native = row.kind;
  }
}

ClassInfo* ClassTable::Add(std::string_view name, const ClassInfo* super) {
  auto info = std::make_unique<ClassInfo>();
  info->name = std::string(name);
  info->super = super;
  by_name_.emplace(info->name, info.get());
  classes_.push_back(std::move(info));
  return classes_.back().get();
}

const ClassInfo* ClassTable::Find(std::string_view name) const {
  // 2^64 divided by the golden ratio. Multiplying by it spreads addresses that are close to each
  // other over all slots (Fibonacci hashing).
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
  const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(name.data()));
  std::atomic<const ClassInfo*>& slot = recent_[(place * kSpread >> 32) % recent_.size()];
  const ClassInfo* const recent = slot.load(std::memory_order_acquire);
  if (recent != nullptr && recent->name == name) return recent;
  const auto entry = by_name_.find(name);
  if (entry == by_name_.end()) return nullptr;
  slot.store(entry->second, std::memory_order_release);
  return entry->second;
}

void ClassTable::Place(ClassInfo* info) {
  info->offset =
      info->super == nullptr ? kFirstOffset : info->super->instance_size + kRecordAlignment;
  while (!used_offsets_.insert(info->offset).second) info->offset += kRecordAlignment;
  info->instance_size = info->offset + (info->record_size == 0 ? kTrapSize : info->record_size);
}

bool ClassTable::Register(abi::REALclassDefinition* definition, const char* user) {
  if (definition == nullptr) Fatal(std::string(user) + ": the definition is null");
  abi::REALclassDefinition& d = *definition;
  const char* const name = d.name == nullptr ? "" : d.name;
  const Checker checker(std::string(user) + ": class \"" + name + "\"", d);
  checker.Require(ParseDeclaration(name).has_value(), "the name is missing or not well-formed");
  checker.Require(Find(name) == nullptr, "a class of this name exists");
  const ClassInfo* const super = d.superName == nullptr ? nullptr : Find(d.superName);
  if (d.superName != nullptr && super == nullptr && expects_gaps_) return false;
  checker.Require(d.superName == nullptr || super != nullptr,
                  "the super class is not known: " + std::string(d.superName ? d.superName : ""));
  checker.Require(super == nullptr || super->native == NativeKind::kNone,
                  "the super class is one of the host's own");
  const bool announced = announced_.count(static_cast<int>(d.version)) != 0;
  checker.Require(announced || expects_gaps_,
                  "version " + std::to_string(d.version) + " was not announced");
  checker.Require(d.dataSize % kRecordAlignment == 0, "the data size is no multiple of 16");
  checker.CheckTables();
  checker.CheckAttributes("the class", d.attributes, d.attributeCount);
  ClassInfo* const info = Add(name, super);
  info->definition = definition;
  info->flags = d.flags;
  info->record_size = d.dataSize;
  info->destructor_name = info->name + ".destructor";
  ReadMembers(d, checker, info);
  Place(info);
  registered_.push_back(info);
  d.forSystemUse = static_cast<abi::RBInteger>(info->offset);
  return true;
}

void ClassTable::CheckTypes() const {
  if (expects_gaps_) return;
  const auto check = [this](const ClassInfo& info, std::string_view member, const TypeText& type) {
    const TypeKind kind = KindOf({type.name, false});
    if (kind != TypeKind::kObject || Find(type.name) != nullptr) return;
    Fatal(info.name + "." + std::string(member) + ": the type " + type.name + " is not known");
  };
  for (const ClassInfo* info : registered_) {
    for (const auto* table : {&info->properties, &info->shared_properties}) {
      for (const Property& property : *table) check(*info, property.name, property.type);
    }
    for (const auto* table : {&info->methods, &info->shared_methods}) {
      for (const Method& method : *table) {
        if (method.result_kind != TypeKind::kNothing) {
          check(*info, method.declaration.name, method.declaration.result);
        }
        for (const Parameter& parameter : method.declaration.parameters) {
          check(*info, method.declaration.name, parameter.type);
        }
      }
    }
  }
}

}  // namespace zqv::standin
