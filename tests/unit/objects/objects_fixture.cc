#include "tests/unit/objects/objects_fixture.h"

#include "abi/encodings.h"
#include "host/entry_points.h"
#include "host/strings.h"
#include "objects/address.h"
#include "objects/address_list.h"
#include "objects/body.h"
#include "objects/entity.h"
#include "objects/field.h"
#include "objects/group.h"
#include "objects/header.h"
#include "objects/mailbox.h"
#include "objects/mailbox_list.h"
#include "standin/things.h"

namespace zqv::test {
namespace {

constexpr int kVersion = 13;

// The original functions, which the recording ones call, and the locks recorded.
decltype(host::entry::REALUnlockString)::Function g_unlock_string = nullptr;
decltype(host::entry::REALUnlockObject)::Function g_unlock_object = nullptr;
std::vector<const void*> g_unlocked;

void RecordStringUnlock(abi::REALstring string) {
  g_unlocked.push_back(string);
  g_unlock_string(string);
}

void RecordObjectUnlock(abi::REALobject object) {
  g_unlocked.push_back(object);
  g_unlock_object(object);
}

}  // namespace

standin::Host& ObjectsTest::StartObjects(const standin::Capabilities& capabilities) {
  Start(capabilities);
  RegisterClass<objects::MimeBodyClassData, objects::MimeBodyDestructor>("MimeBodyZQV");
  RegisterClass<objects::MimeHeaderClassData, objects::MimeHeaderDestructor>("MimeHeaderZQV");
  RegisterClass<objects::MimeEntityClassData, objects::MimeEntityDestructor>("MimeEntityZQV");
  RegisterClass<objects::MimeAddressClassData, objects::MimeAddressDestructor>("MimeAddressZQV");
  RegisterClass<objects::MimeGroupClassData, objects::MimeGroupDestructor>("MimeGroupZQV");
  RegisterClass<objects::MimeAddressListClassData, objects::MimeAddressListDestructor>(
      "MimeAddressListZQV");
  RegisterClass<objects::MimeMailboxListClassData, objects::MimeMailboxListDestructor>(
      "MimeMailboxListZQV");
  RegisterClass<objects::MimeMailboxClassData, objects::MimeMailboxDestructor>("MimeMailboxZQV");
  RegisterClass<objects::MimeFieldClassData, objects::MimeFieldDestructor>("MimeFieldZQV");
  return host();
}

standin::Host& ObjectsTest::StartObjectsWithFault(const char* name, standin::Fault fault) {
  standin::Capabilities capabilities;
  capabilities.faults[name] = fault;
  return StartObjects(capabilities);
}

standin::Host& ObjectsTest::StartObjectsWithoutClass(const char* name) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert(name);
  return StartObjects(capabilities);
}

// Registers without the entry points, because a test may count their calls or let them fail.
void ObjectsTest::RegisterDefinition(abi::REALclassDefinition& definition) {
  host().classes().AnnounceVersion(kVersion);
  host().classes().Register(&definition, "a test");
}

void ObjectsTest::RecordUnlocks() {
  g_unlocked.clear();
  g_unlock_string = reinterpret_cast<decltype(g_unlock_string)>(host::Resolve("REALUnlockString"));
  g_unlock_object = reinterpret_cast<decltype(g_unlock_object)>(host::Resolve("REALUnlockObject"));
  Replace("REALUnlockString", &RecordStringUnlock);
  Replace("REALUnlockObject", &RecordObjectUnlock);
}

const std::vector<const void*>& ObjectsTest::Unlocked() { return g_unlocked; }

abi::REALclassDefinition MadeUpClass(const char* name, std::size_t size,
                                     void (*destructor)(abi::REALobject), const char* super) {
  constexpr std::size_t kAlignment = 16;
  abi::REALclassDefinition definition{};
  definition.version = kVersion;
  definition.name = name;
  definition.superName = super;
  definition.dataSize = (size + kAlignment - 1) / kAlignment * kAlignment;
  definition.destructor = reinterpret_cast<abi::REALproc>(destructor);
  definition.flags = abi::kFlagAllTargets;
  return definition;
}

std::unique_ptr<const ParsedMessage> Parse(std::string_view message) {
  return std::make_unique<const ParsedMessage>(message);
}

std::string Show(const host::StringSlot& slot) { return Show(slot.Share()); }

std::string Ascii(std::string_view bytes) { return Shown(abi::kAscii, bytes); }
std::string Utf8(std::string_view bytes) { return Shown(abi::kUtf8, bytes); }
std::string MacRoman(std::string_view bytes) { return Shown(abi::kMacRoman, bytes); }

host::StringRef NewText(std::string_view bytes) { return host::BuildString(bytes, abi::kUtf8); }

host::ObjectRef NewThing() {
  return host::ObjectRef::Adopt(host::entry::PluginNewInstance("Date"));
}

std::int64_t LocksOf(const void* thing) {
  return static_cast<const standin::Thing*>(thing)->LockCount();
}

}  // namespace zqv::test
