// The classes that this host knows: its own and those that the plug-in registers.
//
// Registration is strict: whatever is wrong with a definition is fatal. Each class has a record
// offset of its own, a multiple of 16. A class whose record has no bytes gets an offset whose
// memory nobody may touch. Names of classes and members ignore case.
//
// Several threads may look classes up at the same time; registering is for one thread, while no
// other uses the table.
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

// Which of the host's own kinds of objects a native class makes.
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

// A name that is no built-in type counts as a class, known or not.
TypeKind KindOf(const TypeText& type);

// A row of a property table, read once at registration. The row itself must stay in place.
struct Property {
  std::string_view name;
  std::string full_name;  // "MimeFieldZQV.Name", for messages
  TypeText type;
  TypeKind kind;
  std::uint32_t flags;  // as they were at registration
  bool is_standard;     // read from the record at row->param
  const abi::REALproperty* row;
};

// A row of a method table, read once at registration.
struct Method {
  Declaration declaration;
  std::string full_name;
  TypeKind result_kind;
  std::uint32_t flags;
  const abi::REALmethodDefinition* row;
};

// One class, native or registered. It lives as long as the table and never moves.
struct ClassInfo : TypeInfo {
  const ClassInfo* super = nullptr;
  NativeKind native = NativeKind::kNone;
  // The rest describes registered classes only.
  abi::REALclassDefinition* definition = nullptr;
  std::uint32_t flags = 0;
  std::size_t offset = 0;         // of this class's own record
  std::size_t record_size = 0;    // 0: the record's place is a trap of kTrapSize bytes
  std::size_t instance_size = 0;  // of an instance of exactly this class
  std::string destructor_name;    // for messages
  std::vector<Property> properties;
  std::vector<Method> methods;
  std::vector<Property> shared_properties;
  std::vector<Method> shared_methods;

  // This class or one derived from it.
  bool IsA(const ClassInfo& other) const;
};

// Bytes where a class without a record would have one; touching them is noticed.
inline constexpr std::size_t kTrapSize = 256;

// Not copyable: things point at its classes.
class ClassTable {
 public:
  ClassTable();
  ClassTable(const ClassTable&) = delete;
  ClassTable& operator=(const ClassTable&) = delete;

  // What "RegisterPluginVersion" told.
  void AnnounceVersion(int version) { announced_.insert(version); }
  // From now on registrations and announcements may be missing through the host's own fault: an
  // unknown super class, type or version is no misuse any more.
  void ExpectGaps() { expects_gaps_ = true; }

  // Takes a definition in and writes its record offset into it; the definition must outlive the
  // table. `user` names the entry point. False when the super class is missing, as expected.
  bool Register(abi::REALclassDefinition* definition, const char* user);

  // Fatal when a member names a type that is no class by now.
  void CheckTypes() const;

  // Null when there is no such class.
  const ClassInfo* Find(std::string_view name) const;

  // The registered classes in the order of registration.
  const std::vector<const ClassInfo*>& registered() const { return registered_; }
  // Every version announced so far.
  const std::set<int>& announced() const { return announced_; }

 private:
  // A new class without members; the name must be free.
  ClassInfo* Add(std::string_view name, const ClassInfo* super);
  // Chooses the record's offset and the instance's size.
  void Place(ClassInfo* info);

  std::vector<std::unique_ptr<ClassInfo>> classes_;
  std::unordered_map<std::string_view, const ClassInfo*, NameHash, NameEqual> by_name_;
  // What was found last, by where the name that was asked for lies: who asks again has it there.
  mutable std::array<std::atomic<const ClassInfo*>, 64> recent_{};
  std::vector<const ClassInfo*> registered_;
  std::set<std::size_t> used_offsets_;
  std::set<int> announced_;
  bool expects_gaps_ = false;
};

}  // namespace zqv::standin
