// The records and scalar types that are passed between host and plug-in, with their binary layout.
//
// Both the plug-in library, which fills these records, and the stand-in host, which reads them,
// include this file. Records have the natural C alignment of a 64-bit processor; static_asserts
// below check all sizes and those offsets at which padding could differ.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zqv::abi {

using RBInteger = std::int64_t;
using RBBoolean = std::int8_t;  // 0 or 1
using REALproc = void (*)();

// Opaque to the plug-in: only the host defines these.
struct REALstringStruct;
struct REALobjectStruct;
struct REALarrayStruct;
using REALstring = REALstringStruct*;
using REALobject = REALobjectStruct*;
using REALarray = REALarrayStruct*;  // an array is an object, too, and is locked like one

// A CFStringRef, which the caller must release. Used on macOS only.
using PlatformString = const void*;

// The function that the host passes to REALPluginMain. It returns the address of an entry point, or
// null when the host does not have it.
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
  REALproc getter;  // all bits set: the host's standard getter, which reads a field of the record
  REALproc setter;
  std::int32_t param;  // offset of that field in bytes
  REALproc editor;
  std::size_t enumCount;
  const char** enumEntries;
  std::size_t attributeCount;
  REALattribute* attributes;
};

// Kinds of members that the plug-in does not use: pointers to them are null and counts 0.
struct REALevent;
struct REALeventInstance;
struct REALconstant;
struct REALdelegate;
struct REALenum;

struct REALclassDefinition {
  std::uint32_t version;
  const char* name;
  const char* superName;
  std::size_t dataSize;    // size of the class's own record in bytes
  RBInteger forSystemUse;  // written by the host: the record's offset in an instance, in bytes
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
  // Exist from version 11 on; a host to which a lower version was announced does not read them.
  REALdelegate* delegates;
  std::size_t delegateCount;
  REALenum* enums;
  std::size_t enumCount;
};

// A string's bytes in a requested encoding. PluginGetStringData fills it, and
// PluginDisposeStringData takes it back. It must not be copied in between.
struct REALstringData {
  const void* data;
  std::size_t length;  // in bytes
  std::uint32_t encoding;
  const void* private1;
  std::uint32_t private2;
};

// The functions that entry points of kind PROCEDURE return for arrays.
using ObjectArrayInsertProc = void (*)(REALarray, RBInteger index, REALobject);  // adds a lock
using IntegerArrayGetProc = RBInteger (*)(REALarray, RBInteger index);
using IntegerArraySetProc = void (*)(REALarray, RBInteger value, RBInteger index);

// Element types for RuntimeArrayCreateSingleDimBoundedArray.
inline constexpr int kObjectElements = 4;
inline constexpr int kIntegerElements = 11;

// Flag bits of classes, methods and properties.
inline constexpr std::uint32_t kFlagRunTimeOnly = 0x2;
inline constexpr std::uint32_t kFlagAllTargets = 0x4;
inline constexpr std::uint32_t kFlagConsole = 0x8;
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
