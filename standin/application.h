// What an application can do with the plug-in's classes: make objects, read properties, call
// methods, and receive exceptions.
//
// Members are found by name, ignoring case, in the class and then its super classes. A member that
// is not there, a private one, or arguments that do not fit throw std::invalid_argument: that is
// the caller's mistake. An exception that the plug-in raised is thrown as HostException when the
// call has returned, in the thread that made the call. What the plug-in does wrong is fatal.
//
// All of this may be done in several threads at the same time. Nothing keeps two threads from
// changing one object of the plug-in or of the host at once: as in a real host, that is for the
// application to see to.
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

// A pending exception of the host, delivered.
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

// A new string with its bytes labelled as given; no bytes give nil.
String MakeString(std::string_view bytes, abi::Encoding encoding = abi::kUtf8);
// An empty string that is not nil.
String MakeEmptyString(abi::Encoding encoding);

Object MakeMemoryBlock(std::string_view bytes);
// Has a pointer, but tells size -1.
Object MakeMemoryBlockOfUnknownSize(std::string_view bytes);
// Tells a size, but has no pointer.
Object MakeMemoryBlockWithoutPointer(std::int64_t size);
// A reference to a file that need not exist.
Object MakeFolderItem(std::string_view path);

// A new instance of any class; no Constructor runs.
Object NewInstance(std::string_view class_name);

// Reads a property of a plug-in's class or of the host's own.
Value Get(const Object& object, std::string_view property);
Value GetShared(std::string_view class_name, std::string_view property);
void SetShared(std::string_view class_name, std::string_view property, const Value& value);

// `method` is a whole declaration, or a name when the arguments leave only one method of it.
Value CallWith(const Object& object, std::string_view method, const std::vector<Value>& arguments);
Value CallSharedWith(std::string_view class_name, std::string_view method,
                     const std::vector<Value>& arguments);
// `new class_name(arguments)`: an instance, then the matching Constructor on it.
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

// The plug-in's own function behind a method, for benchmarks that call it directly. The declaration
// must be whole; private methods are given too.
abi::REALproc FunctionOf(std::string_view class_name, std::string_view declaration);

// Short cuts for results. Each throws std::bad_variant_access for a value of another type, but
// takes nil as an empty text, a nil object.
std::string BytesOf(const Value& value);
Object ObjectOf(const Value& value);
inline bool IsNil(const Value& value) { return std::holds_alternative<std::monostate>(value); }

}  // namespace zqv::standin
