#include "host/ref.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "standin/application.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using standin::Fault;

class Refs : public test::HostTest {
 protected:
  // Makes a string with two locks: one held by the returned object, and one for the caller to give
  // back.
  static standin::String Make() { return standin::MakeString("x"); }
  static abi::REALstring Given(const standin::String& string) {
    entry::REALLockString(string.raw());
    return string.raw();
  }
};

TEST_F(Refs, NilIsNothing) {
  Start();
  {
    const StringRef nothing;
    const auto shared = StringRef::Share(nullptr);
    const auto adopted = ObjectRef::Adopt(nullptr);
    EXPECT_FALSE(nothing);
    EXPECT_FALSE(shared);
    EXPECT_FALSE(adopted);
    EXPECT_EQ(shared.get(), nullptr);
  }
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(Refs, AdoptTakesOverTheLock) {
  Start();
  const auto string = Make();
  const abi::REALstring raw = Given(string);
  {
    const auto ref = StringRef::Adopt(raw);
    EXPECT_TRUE(ref);
    EXPECT_EQ(ref.get(), raw);
    EXPECT_EQ(string.locks(), 2);
  }
  EXPECT_EQ(string.locks(), 1);
}

TEST_F(Refs, ShareAddsALock) {
  Start();
  const auto string = Make();
  {
    const auto ref = StringRef::Share(string.raw());
    EXPECT_EQ(ref.get(), string.raw());
    EXPECT_EQ(string.locks(), 2);
  }
  EXPECT_EQ(string.locks(), 1);
}

TEST_F(Refs, ShareIsNilWhenNoLockCanBeAdded) {
  StartWithout("REALLockString");
  {
    const auto string = Make();
    EXPECT_FALSE(StringRef::Share(string.raw()));
    EXPECT_EQ(host().CallCount("REALUnlockString"), 0u);
  }
  StartWithout("REALLockObject");
  const auto object = standin::NewInstance("Date");
  EXPECT_FALSE(ObjectRef::Share(object.raw()));
  EXPECT_FALSE(ArrayRef::Share(reinterpret_cast<abi::REALarray>(object.raw())));
  EXPECT_EQ(host().CallCount("REALUnlockObject"), 0u);
}

TEST_F(Refs, DetachHandsTheLockOn) {
  Start();
  const auto string = Make();
  {
    auto ref = StringRef::Share(string.raw());
    EXPECT_EQ(ref.Detach(), string.raw());
    EXPECT_FALSE(ref);
    EXPECT_EQ(ref.Detach(), nullptr);
  }
  EXPECT_EQ(string.locks(), 2);
  entry::REALUnlockString(string.raw());
}

TEST_F(Refs, MovesKeepTheLock) {
  Start();
  const auto first = Make();
  const auto second = Make();
  auto ref = StringRef::Share(first.raw());
  StringRef moved(std::move(ref));
  EXPECT_EQ(first.locks(), 2);
  auto other = StringRef::Share(second.raw());
  moved = std::move(other);
  EXPECT_EQ(moved.get(), second.raw());
  EXPECT_EQ(first.locks(), 1);
  EXPECT_EQ(second.locks(), 2);
  moved = StringRef();
  EXPECT_EQ(second.locks(), 1);
}

TEST_F(Refs, ObjectsAndArraysAreCountedAsObjects) {
  Start();
  const auto object = standin::NewInstance("Date");
  {
    const auto ref = ObjectRef::Share(object.raw());
    EXPECT_EQ(object.locks(), 2);
  }
  EXPECT_EQ(object.locks(), 1);
  {
    const auto array =
        ArrayRef::Adopt(entry::RuntimeArrayCreateSingleDimBoundedArray(abi::kObjectElements, -1));
    const auto more = ArrayRef::Share(array.get());
    EXPECT_EQ(more.get(), array.get());
    EXPECT_EQ(host().CallCount("REALLockObject"), 2u);  // one for the object, one for the array
  }
  EXPECT_EQ(host().ledger().Live().arrays, 0);
}

TEST_F(Refs, ToleratesAHostThatThrowsInUnlock) {
  for (const Fault::Kind kind : {Fault::Kind::kThrows, Fault::Kind::kThrowsInt}) {
    StartWithFault("REALUnlockString", {kind});
    const auto string = Make();
    { const auto ref = StringRef::Share(string.raw()); }
    EXPECT_EQ(host().CallCount("REALUnlockString"), 1u);
  }
}

struct Record {
  StringSlot text;
  ObjectSlot object;
};

TEST_F(Refs, ZeroFilledSlotIsNil) {
  Start();
  Record record;
  std::memset(static_cast<void*>(&record), 0, sizeof record);
  EXPECT_FALSE(record.text);
  EXPECT_EQ(record.text.get(), nullptr);
  EXPECT_FALSE(record.text.Share());
  record.text.Clear();
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(Refs, SlotKeepsWhatIsPutAndGivesBackWhatItHeld) {
  Start();
  const auto first = Make();
  const auto second = Make();
  Record record{};
  record.text.Put(StringRef::Share(first.raw()));
  EXPECT_TRUE(record.text);
  EXPECT_EQ(record.text.get(), first.raw());
  EXPECT_EQ(first.locks(), 2);
  record.text.Put(StringRef::Share(second.raw()));
  EXPECT_EQ(first.locks(), 1);
  EXPECT_EQ(second.locks(), 2);
  {
    const StringRef shared = record.text.Share();
    EXPECT_EQ(second.locks(), 3);
  }
  record.text.Clear();
  EXPECT_FALSE(record.text);
  EXPECT_EQ(second.locks(), 1);
}

TEST_F(Refs, SlotCanBeGivenItsOwnValue) {
  Start();
  const auto string = Make();
  Record record{};
  record.text.Put(StringRef::Share(string.raw()));
  record.text.Put(StringRef::Share(string.raw()));
  EXPECT_EQ(string.locks(), 2);
  record.text.Clear();
}

}  // namespace
}  // namespace zqv::host
