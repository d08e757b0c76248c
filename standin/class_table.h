// The classes that this host knows: its own, called native, and the ones that the plug-in
// registers.
//
// Registration is strict: every mistake in a definition is fatal. Each class has a record offset of
// its own, a multiple of 16. A class with an empty record gets an offset whose memory nobody may
// touch. Names of classes and members ignore case.
//
// Several threads may look up classes at the same time. While one thread registers classes, no
// other may use the table.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "abi/records.h"
#include "standin/declaration.h"
#include "standin/text.h"
#include "standin/things.h"

namespace zqv::standin {

// The kind of object that a native class makes.
enum class NativeKind : std::uint8_t { kNone, kDate, kMemoryBlock, kFolderItem, kException };

enum class TypeKind : std::uint8_t {
  kNothing,
  kString,
  kBoolean,
  kInteger,
  kDouble,
  kVariant,
  kObject,  // of the class that the type names
  kArray,
};

// Classifies a type. Every name that is not a built-in type counts as a class, even if no class of
// that name is registered.
TypeKind KindOf(const TypeText& type);

// A row of a property table, parsed once at registration. `row` must stay in place.
struct Property {
  std::string_view name;
  std::string full_name;  // "MimeFieldZQV.Name", for messages
  TypeText type;
  TypeKind kind;
  std::uint32_t flags;  // the row's flags at the time of registration
  bool is_standard;     // true: the host reads it from the record at row->param; false: it calls a
                        // getter
  const abi::REALproperty* row;
};

// A row of a method table, parsed once at registration. `row` must stay in place.
struct Method {
  Declaration declaration;
  std::string full_name;
  TypeKind result_kind;
  std::uint32_t flags;
  const abi::REALmethodDefinition* row;
};

// A native or registered class. It lives as long as the table and is never moved.
struct ClassInfo : TypeInfo {
  const ClassInfo* super = nullptr;
  NativeKind native = NativeKind::kNone;
  // The members below are set for registered classes only.
  abi::REALclassDefinition* definition = nullptr;
  std::uint32_t flags = 0;
  std::size_t offset = 0;         // of this class's own record, from the start of an instance
  std::size_t record_size = 0;    // in bytes; 0: kTrapSize bytes take the place of the record
  std::size_t instance_size = 0;  // of an instance of exactly this class
  std::string destructor_name;    // for messages
  std::vector<Property> properties;
  std::vector<Method> methods;
  std::vector<Property> shared_properties;
  std::vector<Method> shared_methods;

  // Whether this is `other` or a class derived from it.
  bool IsA(const ClassInfo& other) const;
};

// The size of the memory that takes the place of an empty record. Access to it is detected.
inline constexpr std::size_t kTrapSize = 256;

// All classes of a host. Not copyable, because things point to the classes.
class ClassTable {
 public:
  ClassTable();
  ClassTable(const ClassTable&) = delete;
  ClassTable& operator=(const ClassTable&) = delete;

  // Handles "RegisterPluginVersion".
  void AnnounceVersion(int version) { announced_.insert(version); }
  // Called when a fault of the host may make registrations and announcements of versions fail. From
  // then on an unknown super class, type or version is not fatal.
  void ExpectGaps() { expects_gaps_ = true; }

  // Adds the class that `definition` describes and writes the offset of its record into the
  // definition, which must outlive the table. `user` names the entry point. Returns false when the
  // super class is unknown and that is not fatal.
  bool Register(abi::REALclassDefinition* definition, const char* user);

  // Fatal when a member's type names a class that is not registered.
  void CheckTypes() const;

  // Finds a class by name. Null when there is none.
  const ClassInfo* Find(std::string_view name) const;

  // The registered classes in the order of registration.
  const std::vector<const ClassInfo*>& registered() const { return registered_; }
  // All versions announced so far.
  const std::set<int>& announced() const { return announced_; }

 private:
  // Adds a class without members. The name must be unused.
  ClassInfo* Add(std::string_view name, const ClassInfo* super);
  // Chooses the offset of the class's record and the size of its instances.
  void Place(ClassInfo* info);

  std::vector<std::unique_ptr<ClassInfo>> classes_;
  std::unordered_map<std::string_view, const ClassInfo*, NameHash, NameEqual> by_name_;
  // Cache of Find: the class found last for each hash of the pointer to the name. Plug-ins ask
  // again with the same pointer.
  mutable std::array<std::atomic<const ClassInfo*>, 64> recent_{};
  std::vector<const ClassInfo*> registered_;
  std::set<std::size_t> used_offsets_;
  std::set<int> announced_;
  bool expects_gaps_ = false;
};

}  // namespace zqv::standin
