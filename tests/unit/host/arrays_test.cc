#include "host/arrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "standin/application.h"
#include "tests/support/alone.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using standin::ArrayLayout;
using standin::Fault;
using test::Logged;
using ::testing::ElementsAre;

constexpr char kCreate[] = "RuntimeArrayCreateSingleDimBoundedArray";
constexpr char kSlowRead[] = "RuntimeDirectReadObjectArray";

standin::Object NewThing() { return standin::NewInstance("Date"); }

class Arrays : public test::HostTest {
 protected:
  standin::Host& StartLayout(ArrayLayout layout, double version = 2024.1) {
    standin::Capabilities capabilities;
    capabilities.array_layout = layout;
    capabilities.version = version;
    return Start(capabilities);
  }

  static ArrayRef ListOf(const std::vector<standin::Object>& things) {
    ArrayRef list = NewObjectArray();
    for (const standin::Object& thing : things) AppendObject(list.get(), thing.raw());
    return list;
  }

  // Reads the element of a list of one object twice. Returns the log that this wrote.
  std::string LogOfTwoReads() {
    const auto thing = NewThing();
    const ArrayRef list = ListOf({thing});
    const test::LogCapture log;
    for (int i = 0; i < 2; ++i) {
      const ObjectRef read = REALGetArrayObject(list.get(), 0);
      EXPECT_EQ(read.get(), thing.raw());
      EXPECT_EQ(thing.locks(), 3);  // held by `thing`, by the list, and by `read`
    }
    EXPECT_EQ(thing.locks(), 2);
    return log.Text();
  }
};

TEST_F(Arrays, NewListIsEmpty) {
  Start();
  const ArrayRef list = NewObjectArray();
  ASSERT_TRUE(list);
  EXPECT_EQ(ArrayCount(list.get()), 0);
  EXPECT_EQ(host().CallCount(kCreate), 1u);
}

TEST_F(Arrays, NoListWhenTheHostCannotMakeOne) {
  StartWithout(kCreate);
  EXPECT_FALSE(NewObjectArray());
}

TEST_F(Arrays, AppendedObjectsAreInOrder) {
  if (!test::IsAlone()) return;
  Start();
  const auto first = NewThing(), second = NewThing(), third = NewThing();
  const ArrayRef list = ListOf({first, second, third});
  EXPECT_EQ(REALGetArrayObject(list.get(), 0).get(), first.raw());
  EXPECT_EQ(REALGetArrayObject(list.get(), 1).get(), second.raw());
  EXPECT_EQ(REALGetArrayObject(list.get(), 2).get(), third.raw());
}

TEST_F(Arrays, AListAddsItsOwnLock) {
  Start();
  const auto thing = NewThing();
  {
    const ArrayRef list = ListOf({thing});
    EXPECT_EQ(thing.locks(), 2);
  }
  EXPECT_EQ(thing.locks(), 1);
}

TEST_F(Arrays, CountOfNilEmptyAndThree) {
  Start();
  EXPECT_EQ(ArrayCount(nullptr), 0);
  EXPECT_EQ(ArrayCount(NewObjectArray().get()), 0);
  EXPECT_EQ(ArrayCount(ListOf({NewThing(), NewThing(), NewThing()}).get()), 3);
}

TEST_F(Arrays, CountIsOneWhenTheHostCannotTell) {
  StartWithout("RuntimeUBound");
  EXPECT_EQ(ArrayCount(NewObjectArray().get()), 1);
  EXPECT_EQ(ArrayCount(nullptr), 0);
}

TEST_F(Arrays, ObjectIsDroppedWhenTheHostCannotInsert) {
  StartWithout("PluginObjectArrayInsertProc");
  const auto thing = NewThing();
  EXPECT_EQ(ArrayCount(ListOf({thing}).get()), 0);
  EXPECT_EQ(thing.locks(), 1);
}

std::vector<std::int64_t> g_insertions;
void RefuseInsertion(abi::REALarray, abi::RBInteger index, abi::REALobject) {
  g_insertions.push_back(index);
}
void* RefusingInsertProc(abi::REALarray) { return reinterpret_cast<void*>(&RefuseInsertion); }

using MissingEntryPoints = Arrays;

TEST_F(MissingEntryPoints, EveryListSurvives) {
  Start();
  ReplaceWith("RuntimeUBound", nullptr);
  Replace("PluginObjectArrayInsertProc", &RefusingInsertProc);
  g_insertions.clear();
  const ArrayRef list = ListOf({NewThing(), NewThing()});
  EXPECT_TRUE(list);
  EXPECT_THAT(g_insertions, ElementsAre(1, 1));
  NewListFiller filler(list.get());
  filler.Append(nullptr);
  filler.Append(nullptr);
  EXPECT_THAT(g_insertions, ElementsAre(1, 1, 1, 1));
}

TEST_F(Arrays, NilArrayHasNoElements) {
  Start();
  const test::LogCapture log;
  EXPECT_FALSE(REALGetArrayObject(nullptr, 0));
  EXPECT_FALSE(REALGetArrayObject(nullptr, -1));
  EXPECT_EQ(log.Text(),
            Logged({"REALGetArrayObject Array is nil", "REALGetArrayObject Array is nil"}));
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(Arrays, IndexOutsideIsRaised) {
  Start();
  const ArrayRef empty = NewObjectArray();
  EXPECT_FALSE(REALGetArrayObject(empty.get(), 0));
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
  const ArrayRef three = ListOf({NewThing(), NewThing(), NewThing()});
  EXPECT_FALSE(REALGetArrayObject(three.get(), -1));
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to 2, but "
            "value is -1.");
  EXPECT_FALSE(REALGetArrayObject(three.get(), 3));
  EXPECT_EQ(
      TakeRaised(),
      "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to 2, but value is 3.");
}

TEST_F(Arrays, IndexOutsideStartsNoSelfTest) {
  if (!test::IsAlone()) return;
  Start();
  const ArrayRef empty = NewObjectArray();
  const test::LogCapture log;
  EXPECT_FALSE(REALGetArrayObject(empty.get(), 0));
  EXPECT_NE(TakeRaised(), "");
  EXPECT_EQ(log.Text(), "");
  EXPECT_EQ(host().CallCount(kCreate), 1u);
}

TEST_F(Arrays, ElementsAreReadDirectlyFromTheNewLayout) {
  if (!test::IsAlone()) return;
  StartVersion(2021.0);
  EXPECT_EQ(LogOfTwoReads(), Logged({"TestArray 2021.000000"}));
  EXPECT_EQ(host().CallCount(kSlowRead), 0u);
  EXPECT_EQ(host().CallCount(kCreate), 2u);  // one for the list, one for the only self-test
}

TEST_F(Arrays, ElementsAreReadDirectlyFromTheOldLayout) {
  if (!test::IsAlone()) return;
  StartVersion(2020.99);
  EXPECT_EQ(LogOfTwoReads(), Logged({"TestArray 2020.990000"}));
  EXPECT_EQ(host().CallCount(kSlowRead), 0u);
}

TEST_F(Arrays, NewListIsFilledInOrderWithoutAskingTheHostAgain) {
  Start();
  const std::vector<standin::Object> things = {NewThing(), NewThing(), NewThing()};
  const ArrayRef list = NewObjectArray();
  const std::uint64_t bounds_before = host().CallCount("RuntimeUBound");
  NewListFiller filler(list.get());
  for (const standin::Object& thing : things) filler.Append(thing.raw());
  EXPECT_EQ(host().CallCount("RuntimeUBound"), bounds_before);
  EXPECT_EQ(host().CallCount("PluginObjectArrayInsertProc"), 1u);
  ASSERT_EQ(ArrayCount(list.get()), 3);
  for (std::size_t i = 0; i < things.size(); ++i) {
    EXPECT_EQ(REALGetArrayObject(list.get(), static_cast<std::int64_t>(i)).get(), things[i].raw());
  }
}

TEST_F(Arrays, NewListTakesNothingWithoutAnInsertProcedure) {
  Start();
  const auto thing = NewThing();
  const ArrayRef list = NewObjectArray();
  host().SetFault("PluginObjectArrayInsertProc", Fault{Fault::Kind::kNothing});
  NewListFiller filler(list.get());
  filler.Append(thing.raw());
  EXPECT_EQ(ArrayCount(list.get()), 0);
  host().SetFault("PluginObjectArrayInsertProc", std::nullopt);
  filler.Append(thing.raw());
  EXPECT_EQ(ArrayCount(list.get()), 1) << "an object that was not inserted is not counted";
}

TEST_F(Arrays, NilElementIsNil) {
  if (!test::IsAlone()) return;
  Start();
  const ArrayRef list = NewObjectArray();
  AppendObject(list.get(), nullptr);
  EXPECT_FALSE(REALGetArrayObject(list.get(), 0));
  EXPECT_EQ(host().CallCount(kSlowRead), 0u);
  EXPECT_EQ(host().CallCount("REALLockObject"), 0u);
}

// Each value in an array's memory that the self-test checks is wrong in one of these tests.
class BrokenLayout : public Arrays {
 protected:
  void ExpectSlowReads(ArrayLayout layout, const std::string& failure, double version = 2024.1) {
    StartLayout(layout, version);
    const std::string test = "TestArray " + std::to_string(version);
    EXPECT_EQ(LogOfTwoReads(), Logged({test, failure}));
    EXPECT_EQ(host().CallCount(kSlowRead), 2u);
    EXPECT_EQ(host().CallCount(kCreate), 2u);
  }
};

TEST_F(BrokenLayout, ReferenceCount) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kWrongLocks, "refCount wrong 2");
}

TEST_F(BrokenLayout, DimensionCount) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kWrongDimensions, "DimensionCount wrong 2");
}

TEST_F(BrokenLayout, DimensionCountOfAnOlderHost) {
  if (test::IsAlone())
    ExpectSlowReads(ArrayLayout::kWrongDimensions, "DimensionCount wrong 2", 2019.1);
}

TEST_F(BrokenLayout, UpperBound) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kWrongUpperBound, "ubound wrong 1235");
}

TEST_F(BrokenLayout, Storage) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kNoStorage, "data is nil");
}

TEST_F(BrokenLayout, FirstElement) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kWrongSlot0, "Index 0 failed 0");
}

TEST_F(BrokenLayout, TenthElement) {
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kWrongSlot9, "Index 9 failed 0");
}

TEST_F(BrokenLayout, ShortDimensionCountWhereALongOneIsExpected) {
  if (!test::IsAlone()) return;
  StartLayout(ArrayLayout::kOld, 2024.1);
  EXPECT_THAT(LogOfTwoReads(),
              ::testing::MatchesRegex("ZQV Debug: TestArray 2024.100000\n"
                                      "ZQV Debug: DimensionCount wrong -?[0-9]+\n"));
  EXPECT_EQ(host().CallCount(kSlowRead), 2u);
}

TEST_F(BrokenLayout, UpperBoundAtTheNewPlaceInAnOldHost) {
  // At the offset of the old layout the stand-in has its filler, four bytes 0xA5.
  if (test::IsAlone()) ExpectSlowReads(ArrayLayout::kNew, "ubound wrong -1515870811", 2019.1);
}

// Each of these tests lets one of the host's array operations fail in the self-test.
class FailingSelfTest : public Arrays {
 protected:
  void ExpectFailure(const std::string& failure) {
    EXPECT_EQ(LogOfTwoReads(), Logged({"TestArray 2024.100000", failure}));
    EXPECT_EQ(host().CallCount(kSlowRead), 2u);
  }
};

TEST_F(FailingSelfTest, NoArray) {
  if (!test::IsAlone()) return;
  StartWithFault(kCreate, {Fault::Kind::kNothing, 2});
  ExpectFailure("Failed to allocate array");
}

TEST_F(FailingSelfTest, UpperBound) {
  if (!test::IsAlone()) return;
  StartWithFault("RuntimeUBound",
                 {Fault::Kind::kNothing, 3,
                  1});  // the third call, after those for appending and for the first read
  ExpectFailure("ubound failed 0");
}

TEST_F(FailingSelfTest, NoSetProcedure) {
  if (!test::IsAlone()) return;
  StartWithout("PluginIntegerArraySetProc");
  ExpectFailure("Index 0 failed 0");
}

TEST_F(FailingSelfTest, NoGetProcedure) {
  if (!test::IsAlone()) return;
  StartWithout("PluginIntegerArrayGetProc");
  ExpectFailure("Index 0 failed 0");
}

// A get procedure that returns wrong values for one index only.
std::int64_t g_wrong_index;
abi::RBInteger NearlyRight(abi::REALarray, abi::RBInteger index) {
  if (index == g_wrong_index) return 7;
  return index == 0 ? 12345 : index == 9 ? 123456 : 0;
}
void* NearlyRightGetProc(abi::REALarray) { return reinterpret_cast<void*>(&NearlyRight); }

TEST_F(FailingSelfTest, SecondElement) {
  if (!test::IsAlone()) return;
  Start();
  g_wrong_index = 1;
  Replace("PluginIntegerArrayGetProc", &NearlyRightGetProc);
  ExpectFailure("Index 1 failed 7");
}

TEST_F(FailingSelfTest, TenthElement) {
  if (!test::IsAlone()) return;
  Start();
  g_wrong_index = 9;
  Replace("PluginIntegerArrayGetProc", &NearlyRightGetProc);
  ExpectFailure("Index 9 failed 7");
}

TEST_F(FailingSelfTest, WithoutAnUpperBoundOnlyTheFirstElementCanBeRead) {
  if (!test::IsAlone()) return;
  Start();
  const auto thing = NewThing();
  const ArrayRef list = ListOf({thing, thing});
  ReplaceWith("RuntimeUBound", nullptr);
  const test::LogCapture log;
  EXPECT_EQ(REALGetArrayObject(list.get(), 0).get(), thing.raw());
  EXPECT_FALSE(REALGetArrayObject(list.get(), 1));
  EXPECT_EQ(
      TakeRaised(),
      "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to 0, but value is 1.");
  EXPECT_EQ(log.Text(), Logged({"TestArray 2024.100000", "ubound failed 0"}));
}

TEST_F(FailingSelfTest, WithoutTheSlowReadThereIsNoElement) {
  if (!test::IsAlone()) return;
  standin::Capabilities capabilities;
  capabilities.array_layout = ArrayLayout::kNoStorage;
  capabilities.faults[kSlowRead] = {Fault::Kind::kMissing};
  Start(capabilities);
  const ArrayRef list = ListOf({NewThing()});
  EXPECT_FALSE(REALGetArrayObject(list.get(), 0));
  EXPECT_EQ(TakeRaised(), "");
}

TEST_F(FailingSelfTest, IsNotRunAgain) {
  if (!test::IsAlone()) return;
  StartWithFault(kCreate, {Fault::Kind::kNothing, 2, 1});
  ExpectFailure("Failed to allocate array");
  const test::LogCapture log;
  const ArrayRef list = ListOf({NewThing()});
  EXPECT_TRUE(REALGetArrayObject(list.get(), 0));
  EXPECT_EQ(log.Text(), "");
  EXPECT_EQ(host().CallCount(kCreate), 3u);
}

}  // namespace
}  // namespace zqv::host
