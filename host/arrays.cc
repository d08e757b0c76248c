// Reads and fills host arrays. The layout of an array object depends on the host's version; for
// 2021 and later, in bytes from its start:
//
//   24  reference count   56  pointer to the elements (8 bytes each)
//   64  number of dimensions   84  upper bound
//
// A self-test makes an array of integers, writes known values through the host, and checks that
// they are found at these places. Until it has passed, elements are read through the host.
#include "host/arrays.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "base/log.h"
#include "host/errors.h"

namespace zqv::host {
namespace {

// The offsets, in bytes, of the members of an array object that are read here.
struct ArrayLayout {
  double from_version;  // of the host
  std::size_t reference_count;
  std::size_t storage;
  std::size_t dimension_count;
  std::size_t dimension_count_width;  // size of the number of dimensions in bytes, 4 or 8
  std::size_t upper_bound;            // of a 32-bit signed number
};

// Newest first. The first row applies whose version is not above the host's.
constexpr ArrayLayout kLayouts[] = {
    // clang-format off
    //   from  count  storage  dimensions  width  upper bound
    {2021.0,   24,    56,      64,         8,     84},
    {   0.0,   24,    56,      64,         4,     76},
    // clang-format on
};
static_assert(std::size(kLayouts) == 2);
static_assert(kLayouts[1].from_version == 0.0, "every version has a layout");

const ArrayLayout& Layout() {
  const ArrayLayout* row = kLayouts;
  while (HostVersion() < row->from_version && row + 1 != std::end(kLayouts)) ++row;
  return *row;
}

// The upper bound of the self-test's array, the elements that it writes, and those that it expects
// to read.
constexpr std::int64_t kTestUpperBound = 1234;
struct TestElement {
  std::int64_t index;
  std::int64_t value;
  const char* failure;  // for the debug log
};
constexpr TestElement kWritten[] = {{0, 12345, "Index 0 failed"}, {9, 123456, "Index 9 failed"}};
constexpr TestElement kRead[] = {
    {0, 12345, "Index 0 failed"}, {1, 0, "Index 1 failed"}, {9, 123456, "Index 9 failed"}};

// Mutable process state; the names are given by the interface (CONTRIBUTING.md). Whether the
// self-test was started, and whether it has passed, so that elements may be read from memory.
std::atomic<bool> ArrayAccessTested{false};
std::atomic<bool> ArrayAccessSuccess{false};

// Reads a value at an offset into an array object.
template <class Value>
Value Peek(const void* array, std::size_t offset) {
  Value value;
  const char* source = static_cast<const char*>(array) + offset;
  std::memcpy(&value, source, sizeof value);  // NOLINT(bugprone-sizeof-expression)
  return value;
}

// The index of an array's last element: -1 for an empty array, 0 when the host lacks the entry
// point.
std::int64_t UpperBound(abi::REALarray array) { return entry::RuntimeUBound(array); }

char* Storage(abi::REALarray array) { return Peek<char*>(array, Layout().storage); }

// The address of element `index`, or null when elements have to be read through the host.
char* DirectElement(abi::REALarray array, std::int64_t index) {
  if (!ArrayAccessSuccess) return nullptr;
  char* storage = Storage(array);
  return storage != nullptr ? storage + index * 8 : nullptr;
}

void TestArrayAccessOnce();

// Returns whether `index` is inside the array; raises an OutOfBoundsException if not. Runs the
// self-test if it has not run yet.
bool IsAccessible(abi::REALarray array, std::int64_t index) {
  const std::int64_t upper_bound = UpperBound(array);
  if (index < 0 || index > upper_bound) {
    RaiseOutOfBoundsException(index, upper_bound + 1);
    return false;
  }
  TestArrayAccessOnce();
  return true;
}

void REALSetArrayValueInteger(abi::REALarray array, std::int64_t index, std::int64_t value) {
  if (!IsAccessible(array, index)) return;
  if (char* element = DirectElement(array, index); element != nullptr) {
    std::memcpy(element, &value, sizeof value);
    return;
  }
  const auto set = ProcedureAt<abi::IntegerArraySetProc>(entry::PluginIntegerArraySetProc(array));
  if (set != nullptr) set(array, value, index);
}

std::int64_t REALGetArrayValueInteger(abi::REALarray array, std::int64_t index) {
  if (!IsAccessible(array, index)) return 0;
  if (const char* element = DirectElement(array, index); element != nullptr)
    return Peek<std::int64_t>(element, 0);
  const auto get = ProcedureAt<abi::IntegerArrayGetProc>(entry::PluginIntegerArrayGetProc(array));
  return get != nullptr ? get(array, index) : 0;
}

// Returns whether the values are equal; logs `failure` and the value if not.
bool Expect(std::int64_t value, std::int64_t expected, const char* failure) {
  if (value == expected) return true;
  ZQV_LOG("%s %lld", failure, static_cast<long long>(value));
  return false;
}

std::int64_t DimensionCount(abi::REALarray array, const ArrayLayout& layout) {
  return layout.dimension_count_width == 8 ? Peek<std::int64_t>(array, layout.dimension_count)
                                           : Peek<std::int32_t>(array, layout.dimension_count);
}

// Whether the array's memory holds the count, the bounds and the elements where they are expected.
bool PassesLayoutTest(abi::REALarray array) {
  const ArrayLayout& layout = Layout();
  if (!Expect(Peek<std::int64_t>(array, layout.reference_count), 1, "refCount wrong") ||
      !Expect(DimensionCount(array, layout), 1, "DimensionCount wrong") ||
      !Expect(Peek<std::int32_t>(array, layout.upper_bound), kTestUpperBound, "ubound wrong"))
    return false;
  const char* storage = Storage(array);
  if (storage == nullptr) {
    ZQV_LOG("data is nil");
    return false;
  }
  for (const TestElement& element : kWritten) {
    const auto value =
        Peek<std::int64_t>(storage, static_cast<std::size_t>(element.index) * sizeof(std::int64_t));
    if (!Expect(value, element.value, element.failure)) return false;
  }
  return true;
}

// The self-test: writes known values through the host's procedures and reads them back, first
// through the host and then from memory.
bool PassesTest(abi::REALarray array) {
  if (array == nullptr) {
    ZQV_LOG("Failed to allocate array");
    return false;
  }
  if (!Expect(UpperBound(array), kTestUpperBound, "ubound failed")) return false;
  for (const TestElement& element : kWritten)
    REALSetArrayValueInteger(array, element.index, element.value);
  for (const TestElement& element : kRead) {
    if (!Expect(REALGetArrayValueInteger(array, element.index), element.value, element.failure))
      return false;
  }
  return PassesLayoutTest(array);
}

void TestArrayAccessOnce() {
  if (ArrayAccessTested.exchange(true)) return;
  ZQV_LOG("TestArray %f", HostVersion());
  const auto array = ArrayRef::Adopt(
      entry::RuntimeArrayCreateSingleDimBoundedArray(abi::kIntegerElements, kTestUpperBound));
  ArrayAccessSuccess = PassesTest(array.get());
}

// The procedure that inserts into this array; null when the host has none.
abi::ObjectArrayInsertProc InsertProcedure(abi::REALarray array) {
  return ProcedureAt<abi::ObjectArrayInsertProc>(entry::PluginObjectArrayInsertProc(array));
}

}  // namespace

ArrayRef NewObjectArray() {
  return ArrayRef::Adopt(entry::RuntimeArrayCreateSingleDimBoundedArray(abi::kObjectElements, -1));
}

// QUIRK: when the host lacks the entry point for the upper bound, the index is always 1, which is
// not valid for an empty array. Part of the interface's contract: a missing entry point counts as
// one that returns 0. Test: MissingEntryPoints.EveryListSurvives.
void AppendObject(abi::REALarray array, abi::REALobject object) {
  const std::int64_t index = UpperBound(array) + 1;
  const abi::ObjectArrayInsertProc insert = InsertProcedure(array);
  if (insert != nullptr) insert(array, index, object);
}

void NewListFiller::Append(abi::REALobject object) {
  if (insert_ == nullptr) insert_ = InsertProcedure(array_);
  if (insert_ == nullptr) return;
  insert_(array_, entry::RuntimeUBound.Find() != nullptr ? count_ : 1, object);
  ++count_;
}

std::int64_t ArrayCount(abi::REALarray array) {
  return array == nullptr ? 0 : UpperBound(array) + 1;
}

ObjectRef REALGetArrayObject(abi::REALarray array, std::int64_t index) {
  if (array == nullptr) {
    ZQV_LOG("REALGetArrayObject Array is nil");
    return {};
  }
  if (!IsAccessible(array, index)) return {};
  if (const char* element = DirectElement(array, index); element != nullptr)
    return ObjectRef::Share(Peek<abi::REALobject>(element, 0));
  return ObjectRef::Adopt(entry::RuntimeDirectReadObjectArray(array, index));
}

}  // namespace zqv::host
