// Constructs messages in each way that an application can, and reads everything of them.
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

// The argument of a constructor. Owns the file of a FolderItem.
class Input {
 public:
  Input(Way way, std::string_view bytes);
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  const Value& value() const { return value_; }

 private:
  std::unique_ptr<TemporaryFolder> folder_;  // of the FolderItem's file; null for other arguments
  Value value_;
};

// A message after its constructor was called, and the exception that it raised.
struct Constructed {
  Object message;
  // "Class, ErrorNumber: Message"; empty when nothing was raised.
  std::string raised;
};

Constructed ConstructOn(const Object& message, std::string_view constructor, const Value& content);
Constructed Construct(Way way, std::string_view bytes);
inline Constructed ConstructFromString(std::string_view bytes) {
  return Construct(Way::kString, bytes);
}
// Constructs a message, and fails the test when an exception is raised.
Object Parse(std::string_view bytes, Way way = Way::kString);

// The exception that `work` raises, in the form of Constructed::raised.
template <typename Work>
std::string RaisedBy(Work work);

// Constructs an object of one of the classes that are made from text.
Object FromText(std::string_view class_name, std::string_view text);

// Shows a string as the number of its encoding and its bytes, "0x600 Hello"; "nil" for nil.
std::string Show(const Value& value);
std::string ShowProperty(const Object& object, std::string_view property);

// Constructs a message and calls everything that the library offers: properties, array methods,
// single elements, counts, look-ups, shared methods, and constructors from text. Ignores host
// exceptions. Returns the number of calls.
int UseEverything(Way way, std::string_view bytes);

// Reads all members of an object and of the objects below it. Elements are read with the indices
// from -1 to `last_index`. Returns the exceptions that were raised, except those for an index out
// of bounds.
std::string ReadEverything(const Object& object, int last_index = 11);

// The first part of an entity; nil when it has none.
Object FirstPartOf(const Object& entity);
// The depth of nesting along the first parts; 0 for a message without parts.
std::size_t LevelsOf(const Object& message);

// The tree of a message with `levels` levels, without members whose object is elsewhere in the tree
// too. Such a member would be written as its path, whose length grows with the depth.
nlohmann::ordered_json MirrorOfTree(const Object& message, std::size_t levels);

// The properties and array methods of a message and of everything below it, without the dates,
// which depend on the time zone.
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
