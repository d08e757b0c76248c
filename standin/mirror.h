// Reads an object tree as an application can see it, into JSON: registered properties and array
// methods without parameters only, whatever classes are registered.
//
//   object   {"class": name, member: value ...}, members of super classes first, each class's
//            properties and then its array methods in the order of registration
//   array    [value ...]
//   String   {"text": UTF-8, "encoding": name}, or {"bytes": ..., "encoding": name} when the text
//            cannot be had in UTF-8; in "bytes" a backslash is doubled and each byte that is not
//            printable ASCII is written as \xHH
//   Date     "2019-01-01T10:00:00"
//   nil      null
//
// A thing met again is {"same": path}, the path being where it was first met ("/Body/Parts/0").
// The walk keeps its own stack, so a deep tree does not exhaust the machine's.
#pragma once

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "standin/handles.h"

namespace zqv::standin {

struct MirrorOptions {
  // Objects and arrays below this depth are written as {"cut": class name}; the top is at 0.
  std::size_t max_depth = 1000;
  // Write a shared object or array out each time it is met, instead of {"same": path}. A tree
  // that shares much then grows beyond all bounds.
  bool repeat_shared = false;
  // Members for which this returns true are left out. Unset: none.
  std::function<bool(std::string_view class_name, std::string_view member)> skip;
};

// Nil gives null. A HostException that a getter raises is let through.
nlohmann::ordered_json Mirror(const Object& object, const MirrorOptions& options = {});

// One value by the same rules.
nlohmann::ordered_json MirrorText(const String& string);

// ASCII from which every byte can be told: a backslash is doubled, and each byte that is not
// printable ASCII is written as \xHH.
std::string EscapeBytes(std::string_view bytes);

}  // namespace zqv::standin
