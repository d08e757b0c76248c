// The application side of the stand-in host: functions that do what the code of an application does
// with the plug-in's classes. They make objects, read properties, call methods, and receive
// exceptions.
//
// Members are found by name, ignoring case, first in the object's class and then in its super
// classes. std::invalid_argument is thrown when there is no such member, when it is private, or
// when the arguments do not fit: the caller of these functions made a mistake. An exception that
// the plug-in raised during a call is thrown as HostException when the call has returned, in the
// thread that made the call. A mistake of the plug-in is fatal (standin/fatal.h).
//
// These functions may be called from several threads at the same time. As in a real host, nothing
// keeps two threads from changing one object at once: the application must prevent it.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/handles.h"

namespace zqv::standin {

// A pending exception of the host, as the application receives it.
class HostException : public std::exception {
 public:
  HostException(std::string class_name_text, std::string message_text, std::int64_t number);
  const char* what() const noexcept override { return what_.c_str(); }

  const std::string class_name;
  const std::string message;  // UTF-8
  const std::int64_t error_number;

 private:
  const std::string what_;
};

// Makes a new string of `bytes`, which are labelled with `encoding` and not checked. Nil when there
// are no bytes.
String MakeString(std::string_view bytes, abi::Encoding encoding = abi::kUtf8);
// Makes an empty string that is not nil.
String MakeEmptyString(abi::Encoding encoding);

Object MakeMemoryBlock(std::string_view bytes);
// Makes a block that has a pointer but reports the size -1.
Object MakeMemoryBlockOfUnknownSize(std::string_view bytes);
// Makes a block that reports a size but has no pointer.
Object MakeMemoryBlockWithoutPointer(std::int64_t size);
// Makes a reference to a file, which need not exist.
Object MakeFolderItem(std::string_view path);

// Makes an instance of any class, without calling a Constructor.
Object NewInstance(std::string_view class_name);

// Read a property, GetShared a shared one. The class may be the plug-in's or the host's own.
Value Get(const Object& object, std::string_view property);
Value GetShared(std::string_view class_name, std::string_view property);
void SetShared(std::string_view class_name, std::string_view property, const Value& value);

// Call a method. `method` is a whole declaration, or only a name if the arguments fit exactly one
// method of that name.
Value CallWith(const Object& object, std::string_view method, const std::vector<Value>& arguments);
Value CallSharedWith(std::string_view class_name, std::string_view method,
                     const std::vector<Value>& arguments);
// Does `new class_name(arguments)`: makes an instance, then calls the matching Constructor.
Object ConstructWith(std::string_view class_name, std::string_view constructor,
                     const std::vector<Value>& arguments);

template <typename... Arguments>
Value Call(const Object& object, std::string_view method, const Arguments&... arguments) {
  return CallWith(object, method, std::vector<Value>{ToValue(arguments)...});
}

template <typename... Arguments>
Value CallShared(std::string_view class_name, std::string_view method,
                 const Arguments&... arguments) {
  return CallSharedWith(class_name, method, std::vector<Value>{ToValue(arguments)...});
}

template <typename... Arguments>
Object Construct(std::string_view class_name, std::string_view constructor,
                 const Arguments&... arguments) {
  return ConstructWith(class_name, constructor, std::vector<Value>{ToValue(arguments)...});
}

// Returns the plug-in's function that implements a method, for benchmarks that call it directly.
// `declaration` must be whole. Private methods are found too.
abi::REALproc FunctionOf(std::string_view class_name, std::string_view declaration);

// Convert a result. Nil gives an empty text or a nil object. A value of another type throws
// std::bad_variant_access.
std::string BytesOf(const Value& value);
Object ObjectOf(const Value& value);
inline bool IsNil(const Value& value) { return std::holds_alternative<std::monostate>(value); }

}  // namespace zqv::standin
