// Making messages in each way that applications have, and reading all there is to read.
#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tests/interface/files.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {

enum class Way { kString, kBlock, kFile };
inline constexpr Way kAllWays[] = {Way::kString, Way::kBlock, Way::kFile};
const char* NameOf(Way way);

// What an application hands to a constructor; keeps the file of a FolderItem.
class Input {
 public:
  Input(Way way, std::string_view bytes);
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  const Value& value() const { return value_; }

 private:
  std::unique_ptr<TemporaryFolder> folder_;  // of the file; null for the other ways
  Value value_;
};

// A message that a constructor has run on, whether it raised or not.
struct Constructed {
  Object message;
  // "Class, ErrorNumber: Message" of what was raised; empty for nothing.
  std::string raised;
};

Constructed ConstructOn(const Object& message, std::string_view constructor, const Value& content);
Constructed Construct(Way way, std::string_view bytes);
inline Constructed ConstructFromString(std::string_view bytes) {
  return Construct(Way::kString, bytes);
}
// A message of which nothing may be raised.
Object Parse(std::string_view bytes, Way way = Way::kString);

// What `work` raises, in the form above.
template <typename Work>
std::string RaisedBy(Work work);

// An object of one of the classes that are made from a text.
Object FromText(std::string_view class_name, std::string_view text);

// A string's bytes and the number of its encoding, "nil" for none: "0x600 Hello".
std::string Show(const Value& value);
std::string ShowProperty(const Object& object, std::string_view property);

// Parses a message in the given way and calls everything the library offers on it and beside it:
// properties, array methods, elements one by one, counts, look-ups, shared methods, constructors
// from text. Exceptions of the host are let pass. Gives the number of calls that came back.
int UseEverything(Way way, std::string_view bytes);

// The same for an object that there is already, without what is beside it; elements of lists by the
// indices from -1 to `last_index`. Gives what was raised; that an index is out of bounds does not
// count.
std::string ReadEverything(const Object& object, int last_index = 11);

// The first of the entities in an entity; nil when there is none.
Object FirstPartOf(const Object& entity);
// How many entities lie in one another, each as the first of its level; the message itself is none.
std::size_t LevelsOf(const Object& message);

// A message of so many levels without the members that share with others what they give: of what
// they share only the path would be written, which is as long as the tree is deep.
nlohmann::ordered_json MirrorOfTree(const Object& message, std::size_t levels);

// The properties and array methods of a message and of all below it; dates left out, since they
// depend on this machine's zone.
nlohmann::ordered_json MirrorWithoutDates(const Object& message);

template <typename Work>
std::string RaisedBy(Work work) {
  try {
    work();
  } catch (const HostException& exception) {
    return exception.class_name + ", " + std::to_string(exception.error_number) + ": " +
           exception.message;
  }
  return {};
}

}  // namespace zqv::interface_test
