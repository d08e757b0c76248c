#include <cstring>

#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

constexpr int kObjects = 4;
constexpr int kIntegers = 11;

template <typename T>
T Field(abi::REALarray array, std::size_t offset) {
  T value;
  std::memcpy(&value, reinterpret_cast<const char*>(array) + offset, sizeof value);
  return value;
}

class ArraysTest : public HostTest {
 protected:
  abi::REALarray NewArray(int type, abi::RBInteger upper_bound) {
    return api().RuntimeArrayCreateSingleDimBoundedArray(type, upper_bound);
  }
  void Free(abi::REALarray array) {
    api().REALUnlockObject(reinterpret_cast<abi::REALobject>(array));
  }
  void Insert(abi::REALarray array, abi::RBInteger index, abi::REALobject object) {
    reinterpret_cast<abi::ObjectArrayInsertProc>(api().PluginObjectArrayInsertProc(array))(
        array, index, object);
  }
  void Set(abi::REALarray array, abi::RBInteger index, abi::RBInteger value) {
    reinterpret_cast<abi::IntegerArraySetProc>(api().PluginIntegerArraySetProc(array))(array, value,
                                                                                       index);
  }
  abi::RBInteger GetAt(abi::REALarray array, abi::RBInteger index) {
    return reinterpret_cast<abi::IntegerArrayGetProc>(api().PluginIntegerArrayGetProc(array))(
        array, index);
  }

  // An array like the one with which the library tests the layout, with the same two values.
  abi::REALarray NewTestArray() {
    const abi::REALarray array = NewArray(kIntegers, 1234);
    Set(array, 0, 12345);
    Set(array, 9, 123456);
    return array;
  }

  void StartWithLayout(ArrayLayout layout) {
    Capabilities capabilities;
    capabilities.array_layout = layout;
    Start(capabilities);
  }

  static abi::RBInteger Slot(abi::REALarray array, std::size_t index) {
    return Field<const abi::RBInteger*>(array, 56)[index];
  }
};
using ArraysDeathTest = ArraysTest;

TEST_F(ArraysTest, EmptyArrayHasUpperBoundMinusOne) {
  Start();
  const abi::REALarray array = NewArray(kObjects, -1);
  EXPECT_EQ(api().RuntimeUBound(array), -1);
  EXPECT_EQ(Locks(array), 1);
  Free(array);
}

TEST_F(ArraysTest, NewIntegerArrayIsZeroFilled) {
  Start();
  const abi::REALarray array = NewArray(kIntegers, 2);
  EXPECT_EQ(api().RuntimeUBound(array), 2);
  EXPECT_EQ(GetAt(array, 0), 0);
  EXPECT_EQ(GetAt(array, 2), 0);
  Set(array, 1, -7);
  EXPECT_EQ(GetAt(array, 1), -7);
  Free(array);
}

TEST_F(ArraysTest, InsertAddsALockAndTheEndGivesItBack) {
  Start();
  const abi::REALobject date = api().PluginNewInstance("Date");
  const abi::REALarray array = NewArray(kObjects, -1);
  Insert(array, 0, date);
  EXPECT_EQ(Locks(date), 2);
  EXPECT_EQ(api().RuntimeUBound(array), 0);
  Free(array);
  EXPECT_EQ(Locks(date), 1);
  api().REALUnlockObject(date);
}

TEST_F(ArraysTest, InsertInFrontMovesTheRest) {
  Start();
  const abi::REALobject a = api().PluginNewInstance("Date");
  const abi::REALobject b = api().PluginNewInstance("Date");
  const abi::REALarray array = NewArray(kObjects, -1);
  Insert(array, 0, a);
  Insert(array, 0, b);
  Insert(array, 2, nullptr);
  const abi::REALobject first = api().RuntimeDirectReadObjectArray(array, 0);
  const abi::REALobject second = api().RuntimeDirectReadObjectArray(array, 1);
  EXPECT_EQ(first, b);
  EXPECT_EQ(second, a);
  EXPECT_EQ(Locks(a), 3) << "one held by the test, one by the array, one by the element just read";
  EXPECT_EQ(api().RuntimeDirectReadObjectArray(array, 2), nullptr);
  for (const abi::REALobject object : {a, b, first, second}) api().REALUnlockObject(object);
  Free(array);
}

TEST_F(ArraysDeathTest, IndexOutOfBounds) {
  Start();
  const abi::REALarray objects = NewArray(kObjects, -1);
  const abi::REALarray integers = NewArray(kIntegers, 4);
  EXPECT_DEATH(Insert(objects, 1, nullptr), "insertion at 1 of Array of objects");
  EXPECT_DEATH(Insert(objects, -1, nullptr), "insertion at -1 of Array of objects");
  EXPECT_DEATH(api().RuntimeDirectReadObjectArray(objects, 0), "index 0 of Array of objects");
  EXPECT_DEATH(GetAt(integers, 5), "the array's get procedure: index 5 of Array of integers");
  EXPECT_DEATH(Set(integers, -1, 0), "the array's set procedure: index -1 of Array of integers");
  Free(integers);
  Free(objects);
}

TEST_F(ArraysDeathTest, BadCreation) {
  Start();
  EXPECT_DEATH(NewArray(5, -1), "element type 5");
  EXPECT_DEATH(NewArray(kObjects, -2), "upper bound -2");
}

TEST_F(ArraysDeathTest, InsertOfAFreedObject) {
  Start();
  const abi::REALarray array = NewArray(kObjects, -1);
  const abi::REALobject date = api().PluginNewInstance("Date");
  api().REALUnlockObject(date);
  EXPECT_DEATH(Insert(array, 0, date), "the array's insert procedure: use of a freed Date");
  Free(array);
}

TEST_F(ArraysDeathTest, ReadingObjectsFromAnIntegerArray) {
  Start();
  const abi::REALarray integers = NewArray(kIntegers, 0);
  EXPECT_DEATH(api().RuntimeDirectReadObjectArray(integers, 0), "the wrong kind of elements");
  Free(integers);
}

TEST_F(ArraysTest, OffersProceduresForItsKindOfElementOnly) {
  Start();
  const abi::REALarray objects = NewArray(kObjects, -1);
  const abi::REALarray integers = NewArray(kIntegers, -1);
  EXPECT_EQ(api().PluginObjectArrayInsertProc(integers), nullptr);
  EXPECT_EQ(api().PluginIntegerArrayGetProc(objects), nullptr);
  EXPECT_EQ(api().PluginIntegerArraySetProc(objects), nullptr);
  Free(integers);
  Free(objects);
}

TEST_F(ArraysTest, NewLayout) {
  Capabilities capabilities;
  capabilities.version = 2021.0;
  Start(capabilities);
  const abi::REALarray array = NewTestArray();
  EXPECT_EQ(Field<std::int64_t>(array, 24), 1);
  EXPECT_EQ(Field<std::int64_t>(array, 64), 1);
  EXPECT_EQ(Field<std::int32_t>(array, 84), 1234);
  EXPECT_NE(Field<std::int32_t>(array, 76), 1234);
  EXPECT_EQ(Slot(array, 0), 12345);
  EXPECT_EQ(Slot(array, 9), 123456);
  Free(array);
}

TEST_F(ArraysTest, OldLayout) {
  Capabilities capabilities;
  capabilities.version = 2020.02;
  Start(capabilities);
  const abi::REALarray array = NewTestArray();
  EXPECT_EQ(Field<std::int64_t>(array, 24), 1);
  EXPECT_EQ(Field<std::int32_t>(array, 64), 1);
  EXPECT_NE(Field<std::int64_t>(array, 64), 1);
  EXPECT_EQ(Field<std::int32_t>(array, 76), 1234);
  EXPECT_NE(Field<std::int32_t>(array, 84), 1234);
  EXPECT_EQ(Slot(array, 0), 12345);
  EXPECT_EQ(Slot(array, 9), 123456);
  Free(array);
}

TEST_F(ArraysTest, FieldAtByte24IsTheLockCount) {
  Start();
  const abi::REALarray array = NewArray(kObjects, -1);
  api().REALLockObject(reinterpret_cast<abi::REALobject>(array));
  EXPECT_EQ(Field<std::int64_t>(array, 24), 2);
  Free(array);
  EXPECT_EQ(Field<std::int64_t>(array, 24), 1);
  Free(array);
}

TEST_F(ArraysTest, StorageFollowsInsertions) {
  Start();
  const abi::REALarray array = NewArray(kObjects, -1);
  EXPECT_EQ(Field<const void*>(array, 56), nullptr);
  const abi::REALobject date = api().PluginNewInstance("Date");
  for (int i = 0; i < 100; ++i) Insert(array, i, date);
  EXPECT_EQ(Slot(array, 0), reinterpret_cast<abi::RBInteger>(date));
  EXPECT_EQ(Slot(array, 99), reinterpret_cast<abi::RBInteger>(date));
  EXPECT_EQ(Field<std::int32_t>(array, 84), 99);
  api().REALUnlockObject(date);
  Free(array);
}

// Each broken layout has exactly one wrong value among the six that the library's self-test checks.
struct Broken {
  const char* name;
  ArrayLayout layout;
  int wrong;  // index of the check that fails
};
class BrokenLayoutTest : public ArraysTest, public ::testing::WithParamInterface<Broken> {};

TEST_P(BrokenLayoutTest, BreaksOneCheckOnly) {
  StartWithLayout(GetParam().layout);
  const abi::REALarray array = NewTestArray();
  const void* const storage = Field<const void*>(array, 56);
  const bool passes[6] = {
      Field<std::int64_t>(array, 24) == 1,
      Field<std::int64_t>(array, 64) == 1 && Field<std::int32_t>(array, 64) == 1,
      Field<std::int32_t>(array, 84) == 1234 && Field<std::int32_t>(array, 76) == 1234,
      storage != nullptr,
      storage == nullptr || Slot(array, 0) == 12345,
      storage == nullptr || Slot(array, 9) == 123456,
  };
  for (int check = 0; check < 6; ++check) {
    EXPECT_EQ(passes[check], check != GetParam().wrong) << "check " << check;
  }
  EXPECT_EQ(GetAt(array, 0), 12345) << "the host's own procedures do not use the broken value";
  EXPECT_EQ(GetAt(array, 9), 123456);
  EXPECT_EQ(api().RuntimeUBound(array), 1234);
  EXPECT_EQ(Locks(array), 1);
  Free(array);
}

INSTANTIATE_TEST_SUITE_P(Layouts, BrokenLayoutTest,
                         ::testing::Values(Broken{"Locks", ArrayLayout::kWrongLocks, 0},
                                           Broken{"Dimensions", ArrayLayout::kWrongDimensions, 1},
                                           Broken{"UpperBound", ArrayLayout::kWrongUpperBound, 2},
                                           Broken{"Storage", ArrayLayout::kNoStorage, 3},
                                           Broken{"Slot0", ArrayLayout::kWrongSlot0, 4},
                                           Broken{"Slot9", ArrayLayout::kWrongSlot9, 5}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ArraysDeathTest, BrokenLockCountIsStillExact) {
  StartWithLayout(ArrayLayout::kWrongLocks);
  const abi::REALarray array = NewArray(kObjects, -1);
  Free(array);
  EXPECT_DEATH(Free(array), "use of a freed Array of objects");
}

}  // namespace
}  // namespace zqv::standin
