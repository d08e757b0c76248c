// A test fixture with a stand-in host in which the classes of a parsed message are registered.
//
// The classes have the real names, records and destructors, but no members. The tests thus do not
// depend on the class tables of the plug-in.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "abi/records.h"
#include "host/arrays.h"
#include "host/record.h"
#include "host/ref.h"
#include "mime/message.h"
#include "objects/records.h"
#include "standin/capabilities.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::test {

// A class definition with a record of `size` bytes; 0 means no record.
abi::REALclassDefinition MadeUpClass(const char* name, std::size_t size,
                                     void (*destructor)(abi::REALobject),
                                     const char* super = nullptr);

class ObjectsTest : public HostTest {
 protected:
  // Starts a complete host. A test that needs another host then starts that one instead.
  void SetUp() override { StartObjects(); }

  // Starts a host and registers the nine classes of a parsed message.
  standin::Host& StartObjects(const standin::Capabilities& capabilities = {});
  // Does the same with a host in which one entry point fails, or is missing.
  standin::Host& StartObjectsWithFault(const char* name, standin::Fault fault = {});
  // Does the same with a host that cannot create instances of one class.
  standin::Host& StartObjectsWithoutClass(const char* name);

  // Registers a class with a record and a destructor, without members, and binds the record.
  template <class Record, void (*kDestructor)(abi::REALobject)>
  void RegisterClass(const char* name) {
    static abi::REALclassDefinition definition;
    definition = MadeUpClass(name, sizeof(Record), kDestructor);
    RegisterDefinition(definition);
    host::BindRecord<Record>(&definition);
  }
  // Registers a class. The definition must outlive the host.
  void RegisterDefinition(abi::REALclassDefinition& definition);

  // From this call on, Unlocked() lists the strings and objects of which the library gave a lock
  // back, in the order of the unlocks.
  void RecordUnlocks();
  static const std::vector<const void*>& Unlocked();
};

// A parsed message that owns its bytes.
struct ParsedMessage {
  explicit ParsedMessage(std::string_view text) : bytes(text), message(bytes) {}
  mime::Header Header() const { return message.HeaderOf(message.top()); }

  const std::string bytes;
  const mime::Message message;
};
std::unique_ptr<const ParsedMessage> Parse(std::string_view message);

// Shows the string in a slot as Show does for a string reference.
std::string Show(const host::StringSlot& slot);
// Show's text for bytes in the encodings that the library gives to bytes without a charset.
std::string Ascii(std::string_view bytes);
std::string Utf8(std::string_view bytes);
std::string MacRoman(std::string_view bytes);

// Makes a host string, for records that a test fills by hand. [new lock]
host::StringRef NewText(std::string_view bytes);
host::ObjectRef NewThing();

// The number of locks of a host string, object or array.
std::int64_t LocksOf(const void* thing);

// The records of an array's elements. They are valid as long as the array lives.
template <class Record>
std::vector<Record*> RecordsIn(abi::REALarray array) {
  std::vector<Record*> records;
  for (std::int64_t i = 0; i < host::ArrayCount(array); ++i)
    records.push_back(host::RecordOf<Record>(host::REALGetArrayObject(array, i).get()));
  return records;
}

}  // namespace zqv::test
