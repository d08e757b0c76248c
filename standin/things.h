// The memory layout of things: the strings, objects and arrays that the host hands out.
//
// Every thing begins with the same 32 bytes. Its lock count is at byte 24, because the plug-in's
// direct access to arrays reads it there. The stored count is the number of locks plus `lock_bias`,
// which is 0 except in arrays whose layout is wrong on purpose.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "abi/encodings.h"
#include "abi/records.h"

namespace zqv::standin {

enum class ThingKind : std::uint8_t { kString, kObject, kArray };

// The type of a thing, named in reports; the base of ClassInfo. It outlives all things of the type.
struct TypeInfo {
  std::string name;
};

// The head of every thing. In an instance, the records of its classes follow at their offsets.
struct Thing {
  const TypeInfo* type;  // never null
  ThingKind kind;
  bool dying;  // its destructors run, so nobody may lock it any more
  std::int32_t lock_bias;
  const char* creator;  // an entry point's name or "application"
  std::int64_t locks;

  // The true number of locks. The plug-in sees `locks`, at byte 24.
  std::int64_t LockCount() const { return locks - lock_bias; }
};
static_assert(sizeof(Thing) == 32 && offsetof(Thing, locks) == 24);

// A string. Its bytes and a NUL follow the struct in the same allocation.
struct StringThing : Thing {
  abi::Encoding encoding;
  std::uint64_t length;
  std::uint64_t checksum;  // of the bytes; 0 when the ledger is disabled

  char* data() { return static_cast<char*>(static_cast<void*>(this + 1)); }
  const char* data() const { return static_cast<const char*>(static_cast<const void*>(this + 1)); }
  std::string_view bytes() const { return {data(), length}; }
};

// Byte offsets of the fields that the plug-in reads, from the start of an array.
inline constexpr std::size_t kArrayStorageOffset = 56;
inline constexpr std::size_t kArrayDimensionsOffset = 64;
inline constexpr std::size_t kArrayOldUpperBoundOffset = 76;
inline constexpr std::size_t kArrayNewUpperBoundOffset = 84;

// The state of an array, without the fields that the plug-in reads.
struct ArrayBody {
  int element_type;
  std::vector<std::int64_t> slots;  // integers, or pointers to locked objects
  // Shown to the plug-in instead of `slots` by a layout that is wrong on purpose.
  std::vector<std::int64_t> decoy;
};

// An array, which entry points accept as an object for locking. Its body follows in the same
// allocation.
struct ArrayThing : Thing {
  ArrayBody* body;
  std::uint64_t reserved[2];
  unsigned char fields[40];  // bytes 56 to 95 of the array
};
static_assert(sizeof(ArrayThing) == 96 && sizeof(ArrayThing) % alignof(ArrayBody) == 0);
inline constexpr std::size_t kArraySize = sizeof(ArrayThing) + sizeof(ArrayBody);

// Convert to the opaque types that the plug-in sees. The address stays the same.
inline abi::REALstring ToHost(StringThing* string) {
  return reinterpret_cast<abi::REALstring>(string);
}
inline abi::REALobject ToHost(Thing* object) { return reinterpret_cast<abi::REALobject>(object); }
inline abi::REALarray ToHost(ArrayThing* array) { return reinterpret_cast<abi::REALarray>(array); }

}  // namespace zqv::standin
