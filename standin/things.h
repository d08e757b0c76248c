// The memory shapes of what the host hands out: strings, objects and arrays.
//
// Every thing begins with the same 32 bytes, whose lock count lies at byte 24, where the plug-in's
// direct array access expects it. A lock count of `lock_bias` means no lock: the bias is 0 but for
// arrays whose layout is broken on purpose.
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

// What reports call a thing. Classes derive from it.
// It outlives every thing of the type.
struct TypeInfo {
  std::string name;
};

// The head of every thing; for an instance, records follow at their offsets.
struct Thing {
  const TypeInfo* type;  // never null
  ThingKind kind;
  bool dying;  // its destructors run: nobody may lock it any more
  std::int32_t lock_bias;
  const char* creator;  // an entry point's name or "application"
  std::int64_t locks;

  // The true number of locks, whatever byte 24 shows.
  std::int64_t LockCount() const { return locks - lock_bias; }
};
static_assert(sizeof(Thing) == 32 && offsetof(Thing, locks) == 24);

// The bytes and a NUL follow the struct in the same allocation.
struct StringThing : Thing {
  abi::Encoding encoding;
  std::uint64_t length;
  std::uint64_t checksum;  // of the bytes; 0 without a ledger

  char* data() { return static_cast<char*>(static_cast<void*>(this + 1)); }
  const char* data() const { return static_cast<const char*>(static_cast<const void*>(this + 1)); }
  std::string_view bytes() const { return {data(), length}; }
};

// Byte offsets, from the start of an array, that the plug-in relies on.
inline constexpr std::size_t kArrayStorageOffset = 56;
inline constexpr std::size_t kArrayDimensionsOffset = 64;
inline constexpr std::size_t kArrayOldUpperBoundOffset = 76;
inline constexpr std::size_t kArrayNewUpperBoundOffset = 84;

// An array's own state, apart from the fields that the plug-in may read.
struct ArrayBody {
  int element_type;
  std::vector<std::int64_t> slots;  // integers, or pointers to locked objects
  std::vector<std::int64_t> decoy;  // what a broken layout shows instead of the slots
};

// An array is an object to those who lock it. Its body follows it in the same allocation.
struct ArrayThing : Thing {
  ArrayBody* body;
  std::uint64_t reserved[2];
  unsigned char fields[40];  // bytes 56 to 95 of the array
};
static_assert(sizeof(ArrayThing) == 96 && sizeof(ArrayThing) % alignof(ArrayBody) == 0);
inline constexpr std::size_t kArraySize = sizeof(ArrayThing) + sizeof(ArrayBody);

// A thing as the plug-in sees it: the same address, an opaque type.
inline abi::REALstring ToHost(StringThing* string) {
  return reinterpret_cast<abi::REALstring>(string);
}
inline abi::REALobject ToHost(Thing* object) { return reinterpret_cast<abi::REALobject>(object); }
inline abi::REALarray ToHost(ArrayThing* array) { return reinterpret_cast<abi::REALarray>(array); }

}  // namespace zqv::standin
