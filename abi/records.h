// Records and scalar types of the host's plug-in interface, byte for byte.
//
// Both sides of the border include this file: the plug-in library, which fills these records, and
// the stand-in host, which reads them. All records use the platform's natural C alignment on a
// 64-bit processor; the static_asserts below pin every size and the offsets that matter.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zqv::abi {

using RBInteger = std::int64_t;
using RBUInteger = std::uint64_t;
using RBBoolean = std::int8_t;  // 0 or 1
using REALproc = void (*)();

// Opaque to the plug-in: only the host knows what is inside.
struct REALstringStruct;
struct REALobjectStruct;
struct REALarrayStruct;
using REALstring = REALstringStruct*;
using REALobject = REALobjectStruct*;
using REALarray = REALarrayStruct*;  // an array is an object too, and is locked as one

// The platform's own string object; a reference that the caller releases. macOS hosts only.
using PlatformString = const void*;

// The function that a host hands to the plug-in: an entry point's address by its name, or null.
using Resolver = void* (*)(const char* name);

struct REALattribute {
  const char* name;
  const char* value;
};

struct REALmethodDefinition {
  REALproc function;
  REALproc setterFunction;
  const char* declaration;
  std::uint32_t flags;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALproperty {
  const char* group;
  const char* name;
  const char* type;
  std::uint32_t flags;
  REALproc getter;  // all bits set: the host's standard getter, which reads the record at `param`
  REALproc setter;
  std::int32_t param;
  REALproc editor;
  std::size_t enumCount;
  const char** enumEntries;
  std::size_t attributeCount;
  REALattribute* attributes;
};

// Kinds of members that this plug-in does not use; always null with count 0.
struct REALevent;
struct REALeventInstance;
struct REALconstant;
struct REALdelegate;
struct REALenum;

struct REALclassDefinition {
  std::uint32_t version;
  const char* name;
  const char* superName;
  std::size_t dataSize;    // bytes of this class's own record
  RBInteger forSystemUse;  // written by the host: the record's offset from the instance's start
  REALproc constructor;
  REALproc destructor;
  REALproperty* properties;
  std::size_t propertyCount;
  REALmethodDefinition* methods;
  std::size_t methodCount;
  REALevent* events;
  std::size_t eventCount;
  REALeventInstance* eventInstances;
  std::size_t eventInstanceCount;
  const char* interfaces;
  REALattribute* attributes;
  std::size_t attributeCount;
  REALconstant* constants;
  std::size_t constantCount;
  std::uint32_t flags;
  REALproperty* sharedProperties;
  std::size_t sharedPropertyCount;
  REALmethodDefinition* sharedMethods;
  std::size_t sharedMethodCount;
  // From definition version 11 on; a host that was told a lower version does not read these.
  REALdelegate* delegates;
  std::size_t delegateCount;
  REALenum* enums;
  std::size_t enumCount;
};

// A string's bytes in a requested encoding: filled by "PluginGetStringData", given back with
// "PluginDisposeStringData", never copied.
struct REALstringData {
  const void* data;
  std::size_t length;  // bytes
  std::uint32_t encoding;
  const void* private1;
  std::uint32_t private2;
};

// Procedures that the host hands out for one array.
using ObjectArrayInsertProc = void (*)(REALarray, RBInteger index, REALobject);  // adds a lock
using IntegerArrayGetProc = RBInteger (*)(REALarray, RBInteger index);
using IntegerArraySetProc = void (*)(REALarray, RBInteger value, RBInteger index);

// Element types of "RuntimeArrayCreateSingleDimBoundedArray".
inline constexpr int kObjectElements = 4;
inline constexpr int kIntegerElements = 11;

// Flag bits of classes, methods and properties.
inline constexpr std::uint32_t kFlagRunTimeOnly = 0x2;
inline constexpr std::uint32_t kFlagAllTargets = 0x4;
inline constexpr std::uint32_t kFlagConsole = 0x8;
inline constexpr std::uint32_t kFlagGlobal = 0x10;
inline constexpr std::uint32_t kFlagPublic = 0x20;
inline constexpr std::uint32_t kFlagProtected = 0x40;
inline constexpr std::uint32_t kFlagPrivate = 0x80;
inline constexpr std::uint32_t kFlagWeb = 0x100;
inline constexpr std::uint32_t kFlagDesktop = 0x200;
inline constexpr std::uint32_t kFlagIOS = 0x400;

static_assert(sizeof(void*) == 8 && sizeof(std::size_t) == 8, "the interface is 64-bit");
static_assert(sizeof(REALattribute) == 16);
static_assert(sizeof(REALmethodDefinition) == 48);
static_assert(offsetof(REALmethodDefinition, flags) == 24);
static_assert(offsetof(REALmethodDefinition, attributeCount) == 32);
static_assert(sizeof(REALproperty) == 96);
static_assert(offsetof(REALproperty, getter) == 32);
static_assert(offsetof(REALproperty, param) == 48);
static_assert(offsetof(REALproperty, editor) == 56);
static_assert(sizeof(REALclassDefinition) == 232);
static_assert(offsetof(REALclassDefinition, dataSize) == 24);
static_assert(offsetof(REALclassDefinition, forSystemUse) == 32);
static_assert(offsetof(REALclassDefinition, flags) == 160);
static_assert(offsetof(REALclassDefinition, sharedProperties) == 168);
static_assert(sizeof(REALstringData) == 40);
static_assert(offsetof(REALstringData, encoding) == 16);
static_assert(offsetof(REALstringData, private2) == 32);

}  // namespace zqv::abi
