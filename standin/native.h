// The host's own classes: what their objects hold and which properties they offer. An exception
// object holds one lock on its message.
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

// What "memoryBlockGetPtr" and "memoryBlockGetSize" tell; they need not agree.
struct MemoryBlock {
  std::unique_ptr<char[]> bytes;  // null: the block has no pointer
  std::int64_t size = 0;          // -1: unknown
};

// Both paths are UTF-8 and of the same file.
struct FolderItem {
  std::string native_path;
  std::string url_path;
};

// Shared by all exception classes.
struct ExceptionState {
  StringThing* message = nullptr;  // one lock, or nil
  std::int64_t error_number = 0;
};

using NativeState = std::variant<Date, MemoryBlock, FolderItem, ExceptionState>;

// An instance of a native class.
struct NativeThing : Thing {
  NativeState* state;  // owned
};

// A new, empty state for a class of this kind, which must not be kNone.
std::unique_ptr<NativeState> NewState(NativeKind kind);

// "file:///a/b%20c" of "/a/b c".
std::string FileUrl(std::string_view path);

// One property of a native class, as its object holds it.
struct NativeProperty {
  NativeKind owner;
  const char* name;
  TypeKind kind;  // kString, kInteger or kDouble
};

// Null when the class has no such property, or `missing` holds "Class.Property" of the class
// itself or a super class.
const NativeProperty* FindNativeProperty(const ClassInfo& info, std::string_view name,
                                         const std::set<std::string, std::less<>>& missing);

// Reading and writing; the property is one that FindNativeProperty gave for this thing's class,
// of the fitting kind. Writing gives false when the value is refused.
std::int64_t ReadInteger(const NativeThing& thing, const NativeProperty& property);
double ReadDouble(const NativeThing& thing, const NativeProperty& property);
bool WriteInteger(NativeThing* thing, const NativeProperty& property, std::int64_t value);
bool WriteDouble(NativeThing* thing, const NativeProperty& property, double value);
// A file's paths; the message of an exception is a string of its own and not read here.
const std::string& ReadPath(const NativeThing& thing, const NativeProperty& property);

}  // namespace zqv::standin
