// A test with a stand-in host that knows the classes of a parsed message.
//
// The classes are made up: the real records and destructors under the real names, without members.
// So the objects are tested without the tables that the plug-in registers.
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

// The definition of a class with a record of `size` bytes, which may be 0.
abi::REALclassDefinition MadeUpClass(const char* name, std::size_t size,
                                     void (*destructor)(abi::REALobject),
                                     const char* super = nullptr);

class ObjectsTest : public HostTest {
 protected:
  // Starts a complete host; a test that needs another one starts it instead.
  void SetUp() override { StartObjects(); }

  // Starts a host and registers the nine classes of this layer.
  standin::Host& StartObjects(const standin::Capabilities& capabilities = {});
  // The same for a host in which one entry point misbehaves, or is missing.
  standin::Host& StartObjectsWithFault(const char* name, standin::Fault fault = {});
  // The same for a host that can make no instance of one class.
  standin::Host& StartObjectsWithoutClass(const char* name);

  // Registers a class with a record, a destructor and no members, and binds the record.
  template <class Record, void (*kDestructor)(abi::REALobject)>
  void RegisterClass(const char* name) {
    static abi::REALclassDefinition definition;
    definition = MadeUpClass(name, sizeof(Record), kDestructor);
    RegisterDefinition(definition);
    host::BindRecord<Record>(&definition);
  }
  // The definition must outlive the host.
  void RegisterDefinition(abi::REALclassDefinition& definition);

  // From now on Unlocked() tells which strings and objects got a lock given back by the library,
  // in that order.
  void RecordUnlocks();
  static const std::vector<const void*>& Unlocked();
};

// A message with its own bytes.
struct ParsedMessage {
  explicit ParsedMessage(std::string_view text) : bytes(text), message(bytes) {}
  mime::Header Header() const { return message.HeaderOf(message.top()); }

  const std::string bytes;
  const mime::Message message;
};
std::unique_ptr<const ParsedMessage> Parse(std::string_view message);

// What a stored string holds; see Show of a string.
std::string Show(const host::StringSlot& slot);
// The same texts for the encodings in which bytes without a charset come out.
std::string Ascii(std::string_view bytes);
std::string Utf8(std::string_view bytes);
std::string MacRoman(std::string_view bytes);

// Something that takes one of the host's counts, for records that are filled by hand.
host::StringRef NewText(std::string_view bytes);
host::ObjectRef NewThing();

// The locks of a host string, object or array.
std::int64_t LocksOf(const void* thing);

// The records of an array's elements, which live as long as the array.
template <class Record>
std::vector<Record*> RecordsIn(abi::REALarray array) {
  std::vector<Record*> records;
  for (std::int64_t i = 0; i < host::ArrayCount(array); ++i)
    records.push_back(host::RecordOf<Record>(host::REALGetArrayObject(array, i).get()));
  return records;
}

}  // namespace zqv::test
