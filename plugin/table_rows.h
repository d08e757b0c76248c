// Macros for the rows of the class tables. Each expands to a brace-enclosed initializer, so that
// the tables are constant-initialised and no code runs when the library is loaded. Each kind of row
// has its own flags; no row states them. The build fails when a field or function does not fit the
// type that its row declares.
//
//   STORED_STRING(Record, "Name", field)         property of type String, which the host reads from
//                                                the record
//   STORED_OBJECT(Record, "Name", "Type", field) the same for an object of a class
//   STORED_BOOLEAN(Record, "Name", field)        the same for a Boolean
//   GETTER("Name", "Type", function)             property that a function returns, of any type
//   DATE_GETTER("Name", function)                the same for the host's Date; not on iOS
//   SHARED("Name", "Type", getter, setter)       property of the class, with a setter
//   HIDDEN_SHARED(...)                           the same, with the attribute "Hidden" for the IDE
//   METHOD("declaration", function)              method, or constructor with arguments
//   PRIVATE_CTOR(function)                       constructor that applications cannot call
//   CLASS(...)                                   class definition made of such tables
//
// The columns of a table are aligned by hand; clang-format is off around it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "abi/records.h"
#include "host/ref.h"
#include "plugin/signature.h"

namespace zqv::plugin {

// The value that means the host's standard getter, which reads a field of the record.
#define ZQV_STANDARD_GETTER reinterpret_cast<abi::REALproc>(~std::uintptr_t{0})
#define ZQV_PROC(function) reinterpret_cast<abi::REALproc>(function)
#define ZQV_SIGNATURE(function) Signature<std::decay_t<decltype(function)>>

// The flags of each kind of row (abi/records.h).
inline constexpr std::uint32_t kMemberFlags = abi::kFlagRunTimeOnly | abi::kFlagAllTargets;
inline constexpr std::uint32_t kDateFlags =
    abi::kFlagRunTimeOnly | abi::kFlagConsole | abi::kFlagWeb | abi::kFlagDesktop;
inline constexpr std::uint32_t kHiddenFlags = kMemberFlags | abi::kFlagPublic;
inline constexpr std::uint32_t kMethodFlags = abi::kFlagAllTargets;
inline constexpr std::uint32_t kPrivateMethodFlags = abi::kFlagAllTargets | abi::kFlagPrivate;
inline constexpr std::uint32_t kClassFlags = abi::kFlagAllTargets;
static_assert(kMemberFlags == 0x6 && kDateFlags == 0x30a && kHiddenFlags == 0x26 &&
              kMethodFlags == 0x4 && kPrivateMethodFlags == 0x84);

// 0, and a compile-time check that a record's field has the expected type.
template <class Field, class Expected>
inline constexpr std::int32_t kChecked = [] {
  static_assert(std::is_same_v<Field, Expected>, "the record's field has another type");
  return 0;
}();

// A property that the host reads from the record. Lists cannot be such properties: the host's
// standard getter supports strings, objects and Booleans only.
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

#define ZQV_COMPUTED(name, type, flags, getter, setter, attribute_count, attributes)  \
  {                                                                                   \
    nullptr, name, type, (flags) | kFitting<ZQV_SIGNATURE(getter)::IsGetter(type)>,   \
        ZQV_PROC(getter), setter, 0, nullptr, 0, nullptr, attribute_count, attributes \
  }
#define GETTER(name, type, function) \
  ZQV_COMPUTED(name, type, kMemberFlags, function, nullptr, 0, nullptr)
#define DATE_GETTER(name, function) \
  ZQV_COMPUTED(name, "Date", kDateFlags, function, nullptr, 0, nullptr)
#define ZQV_SHARED(name, type, flags, getter, setter, attribute_count, attributes)            \
  ZQV_COMPUTED(name, type, (flags) | kFitting<ZQV_SIGNATURE(setter)::IsSetter(type)>, getter, \
               ZQV_PROC(setter), attribute_count, attributes)
#define SHARED(name, type, getter, setter) \
  ZQV_SHARED(name, type, kMemberFlags, getter, setter, 0, nullptr)
#define HIDDEN_SHARED(name, type, getter, setter) \
  ZQV_SHARED(name, type, kHiddenFlags, getter, setter, 1, g_hidden_attribute)

#define METHOD(declaration, function)                                                       \
  {                                                                                         \
    ZQV_PROC(function), nullptr, declaration,                                               \
        kMethodFlags | kFitting<ZQV_SIGNATURE(function)::IsMethod(declaration)>, 0, nullptr \
  }
#define PRIVATE_CTOR(function) \
  { ZQV_PROC(function), nullptr, "Constructor", kPrivateMethodFlags, 0, nullptr }

// A class definition. Registration sets `version` (15 here), and the host sets forSystemUse. No
// class has a constructor function, events, interfaces, attributes, constants, delegates or enums.
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
