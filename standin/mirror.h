// Converts a tree of objects to JSON, as far as an application can see it: all properties of the
// registered classes, and the methods that return an array and have no parameters.
//
//   object   {"class": name, member: value ...}, members of super classes first, each class's
//            properties and then its array methods in the order of registration
//   array    [value ...]
//   String   {"text": UTF-8, "encoding": name}, or {"bytes": ..., "encoding": name} when the text
//            cannot be converted to UTF-8; in "bytes" a backslash is doubled and each byte that is
//            not printable ASCII is written as \xHH
//   Date     "2019-01-01T10:00:00"
//   nil      null
//
// An object that occurs again is written as {"same": path}, with the path of its first occurrence
// ("/Body/Parts/0"). There is no recursion, so a deep tree does not exhaust the stack.
#pragma once

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "standin/handles.h"

namespace zqv::standin {

struct MirrorOptions {
  // An object or array below this depth is written as {"cut": class name}. The top has depth 0.
  std::size_t max_depth = 1000;
  // Writes a shared object or array in full each time it occurs, instead of {"same": path}. The
  // output can grow exponentially when a tree shares much.
  bool repeat_shared = false;
  // Members for which this returns true are omitted. Unset: none are.
  std::function<bool(std::string_view class_name, std::string_view member)> skip;
};

// Converts the tree below `object`; null for nil. Throws the HostException that a getter or method
// raises.
nlohmann::ordered_json Mirror(const Object& object, const MirrorOptions& options = {});

// Converts a string to JSON as in the table above; null for nil.
nlohmann::ordered_json MirrorText(const String& string);

// Escapes bytes as in "bytes" above: a backslash is doubled, and each byte that is not printable
// ASCII becomes \xHH. The result is ASCII and can be converted back.
std::string EscapeBytes(std::string_view bytes);

}  // namespace zqv::standin
