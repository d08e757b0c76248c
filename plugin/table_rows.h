// The row macros of the class tables, and nothing else. Each expands to a brace list, so that the
// tables are plain data and no code runs when the library loads. A row holds no flag number: a
// member with unusual flags has a row kind of its own.
//
//   STORED_STRING(Record, "Name", field)         String, read by the host from the record
//   STORED_OBJECT(Record, "Name", "Type", field) object of a class, likewise
//   STORED_BOOLEAN(Record, "Name", field)        Boolean, likewise
//   GETTER("Name", "Type", function)             any type, computed by a function
//   DATE_GETTER("Name", function)                Date of the host, not on every target
//   SHARED("Name", "Type", getter, setter)       class-wide, readable and writable
//   HIDDEN_SHARED(...)                           the same, not shown to the application's author
//   METHOD("declaration", function)              method, also constructors that take arguments
//   PRIVATE_CTOR(function)                       "Constructor" that applications cannot call
//   CLASS(...)                                   a definition from the tables above
//
// The columns of the tables line up; clang-format is off around them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "abi/records.h"
#include "host/ref.h"

namespace zqv::plugin {

// The host's standard getter, which reads the record.
#define ZQV_STANDARD_GETTER reinterpret_cast<abi::REALproc>(~std::uintptr_t{0})
#define ZQV_PROC(function) reinterpret_cast<abi::REALproc>(function)

inline constexpr std::uint32_t kMemberFlags = abi::kFlagRunTimeOnly | abi::kFlagAllTargets;
inline constexpr std::uint32_t kDateFlags =
    abi::kFlagRunTimeOnly | abi::kFlagConsole | abi::kFlagWeb | abi::kFlagDesktop;
inline constexpr std::uint32_t kHiddenFlags = kMemberFlags | abi::kFlagPublic;
inline constexpr std::uint32_t kMethodFlags = abi::kFlagAllTargets;
inline constexpr std::uint32_t kPrivateMethodFlags = abi::kFlagAllTargets | abi::kFlagPrivate;
inline constexpr std::uint32_t kClassFlags = abi::kFlagAllTargets;
static_assert(kMemberFlags == 0x6 && kDateFlags == 0x30a && kHiddenFlags == 0x26 &&
              kMethodFlags == 0x4 && kPrivateMethodFlags == 0x84);

// 0 for a field of the expected type; anything else does not compile.
template <class Field, class Expected>
inline constexpr std::int32_t kChecked = [] {
  static_assert(std::is_same_v<Field, Expected>, "the record's field has another type");
  return 0;
}();

// Lists are stored as arrays; the standard getter serves strings, objects and Booleans only.
#define ZQV_STORED(Record, name, type, field, Slot)                  \
  {                                                                  \
    nullptr, name, type, kMemberFlags, ZQV_STANDARD_GETTER, nullptr, \
        static_cast<std::int32_t>(offsetof(Record, field)) +         \
            kChecked<decltype(Record::field), Slot>,                 \
        nullptr, 0, nullptr, 0, nullptr                              \
  }
#define STORED_STRING(Record, name, field) \
  ZQV_STORED(Record, name, "String", field, host::StringSlot)
#define STORED_OBJECT(Record, name, type, field) \
  ZQV_STORED(Record, name, type, field, host::ObjectSlot)
#define STORED_BOOLEAN(Record, name, field) \
  ZQV_STORED(Record, name, "Boolean", field, abi::RBBoolean)

#define ZQV_COMPUTED(name, type, flags, getter, setter, attribute_count, attributes)     \
  {                                                                                      \
    nullptr, name, type, flags, getter, setter, 0, nullptr, 0, nullptr, attribute_count, \
        attributes                                                                       \
  }
#define GETTER(name, type, function) \
  ZQV_COMPUTED(name, type, kMemberFlags, ZQV_PROC(function), nullptr, 0, nullptr)
#define DATE_GETTER(name, function) \
  ZQV_COMPUTED(name, "Date", kDateFlags, ZQV_PROC(function), nullptr, 0, nullptr)
#define SHARED(name, type, getter, setter) \
  ZQV_COMPUTED(name, type, kMemberFlags, ZQV_PROC(getter), ZQV_PROC(setter), 0, nullptr)
#define HIDDEN_SHARED(name, type, getter, setter) \
  ZQV_COMPUTED(name, type, kHiddenFlags, ZQV_PROC(getter), ZQV_PROC(setter), 1, kHiddenAttribute)

#define METHOD(declaration, function) \
  { ZQV_PROC(function), nullptr, declaration, kMethodFlags, 0, nullptr }
#define PRIVATE_CTOR(function) \
  { ZQV_PROC(function), nullptr, "Constructor", kPrivateMethodFlags, 0, nullptr }

// Version and forSystemUse are set at registration. No class has a constructor function, events,
// event instances, interfaces, attributes, constants, delegates or enums.
#define ZQV_CLASS(name, super, size, destructor, properties, property_count, methods,              \
                  method_count, shared_properties, shared_property_count, shared_methods,          \
                  shared_method_count)                                                             \
  {                                                                                                \
    15, name, super, size, 0, nullptr, destructor, properties, property_count, methods,            \
        method_count, nullptr, 0, nullptr, 0, nullptr, nullptr, 0, nullptr, 0, kClassFlags,        \
        shared_properties, shared_property_count, shared_methods, shared_method_count, nullptr, 0, \
        nullptr, 0                                                                                 \
  }
#define CLASS(name, Record, destructor, properties, methods)                 \
  ZQV_CLASS(name, nullptr, sizeof(Record), ZQV_PROC(destructor), properties, \
            std::size(properties), methods, std::size(methods), nullptr, 0, nullptr, 0)

}  // namespace zqv::plugin
