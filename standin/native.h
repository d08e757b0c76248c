// The host's own classes, called native: the state of their objects, and their properties.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "standin/class_table.h"
#include "standin/date.h"
#include "standin/things.h"

namespace zqv::standin {

// The results of "memoryBlockGetPtr" and "memoryBlockGetSize". They need not agree.
struct MemoryBlock {
  std::unique_ptr<char[]> bytes;  // null: the block has no pointer
  std::int64_t size = 0;          // -1: unknown
};

// Two forms of one path, both in UTF-8.
struct FolderItem {
  std::string native_path;
  std::string url_path;
};

// The state of an object of any exception class.
struct ExceptionState {
  StringThing* message = nullptr;  // nil, or a string of which it owns one lock
  std::int64_t error_number = 0;
};

using NativeState = std::variant<Date, MemoryBlock, FolderItem, ExceptionState>;

// An instance of a native class.
struct NativeThing : Thing {
  NativeState* state;  // owned
};

// Makes an empty state for a class of this kind, which must not be kNone.
std::unique_ptr<NativeState> NewState(NativeKind kind);

// Returns the URL of a path: "file:///a/b%20c" for "/a/b c".
std::string FileUrl(std::string_view path);

// One property of a native class.
struct NativeProperty {
  NativeKind owner;
  const char* name;
  TypeKind kind;  // kString, kInteger or kDouble
};

// Finds a property of a class or of its super classes. Null when there is none, or when `missing`
// contains "Class.Property" for the class itself or a super class.
const NativeProperty* FindNativeProperty(const ClassInfo& info, std::string_view name,
                                         const std::set<std::string, std::less<>>& missing);

// Read or write a property. `property` comes from FindNativeProperty for the class of `thing` and
// has the type that the function names. Writing returns false when the value is not accepted.
std::int64_t ReadInteger(const NativeThing& thing, const NativeProperty& property);
double ReadDouble(const NativeThing& thing, const NativeProperty& property);
bool WriteInteger(NativeThing* thing, const NativeProperty& property, std::int64_t value);
bool WriteDouble(NativeThing* thing, const NativeProperty& property, double value);
// For the path properties of FolderItem only; not for the message of an exception.
const std::string& ReadPath(const NativeThing& thing, const NativeProperty& property);

}  // namespace zqv::standin
