// What the host must be told of each class, written out by hand: the tables' second opinion.
//
// A member is known by its spelling, its type or declaration, its flags, the function behind it or
// the place that the host's standard getter reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "abi/records.h"

namespace zqv::test {

struct ExpectedProperty {
  const char* name;
  const char* type;
  std::uint32_t flags;
  std::int32_t offset;   // in the record; kComputed for a getter function
  abi::REALproc getter;  // null for the standard getter
  abi::REALproc setter;  // null for none
  bool hidden;
};

inline constexpr std::int32_t kComputed = -1;

struct ExpectedMethod {
  const char* declaration;
  std::uint32_t flags;
  abi::REALproc function;
};

struct ExpectedClass {
  abi::REALclassDefinition* definition;
  const char* name;
  const char* super;         // null for none
  std::size_t data_size;     // as the host gets it, rounded up
  abi::REALproc destructor;  // null for none
  std::vector<ExpectedProperty> properties;
  std::vector<ExpectedMethod> methods;
  std::vector<ExpectedProperty> shared_properties;
  std::vector<ExpectedMethod> shared_methods;
};

// The eleven classes in the order of registration, with the flags of a recent host.
std::vector<ExpectedClass> ExpectedClasses();

}  // namespace zqv::test
