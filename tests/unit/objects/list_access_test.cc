#include "objects/list_access.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/base/log_capture.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeEntityClassData;

// Only one list of a record is tested, because all of them use the same template.
using List = objects::ListAccess<&MimeEntityClassData::Attachments>;

class ListAccess : public ObjectsTest {
 protected:
  // An entity whose list has `count` elements, or is nil for a negative one.
  host::ObjectRef EntityWithList(int count) {
    auto entity = host::NewInstance<MimeEntityClassData>();
    auto& list = host::RecordOf<MimeEntityClassData>(entity.get())->Attachments;
    if (count >= 0) list.Put(host::NewObjectArray());
    for (int i = 0; i < count; ++i) {
      const auto element = NewThing();
      elements_.push_back(element.get());
      host::AppendObject(list.get(), element.get());
    }
    return entity;
  }

  std::vector<const void*> elements_;
};

TEST_F(ListAccess, CountsTheElements) {
  EXPECT_EQ(List::Count(EntityWithList(-1).get()), 0) << "without a list";
  EXPECT_EQ(List::Count(EntityWithList(0).get()), 0);
  EXPECT_EQ(List::Count(EntityWithList(3).get()), 3);
}

TEST_F(ListAccess, CountsOneWhenTheHostCannotTell) {
  StartObjectsWithFault("RuntimeUBound");
  EXPECT_EQ(List::Count(EntityWithList(0).get()), 1);
  EXPECT_EQ(List::Count(EntityWithList(-1).get()), 0) << "without a list";
}

TEST_F(ListAccess, GivesTheListItselfWithOneLockMore) {
  const auto entity = EntityWithList(2);
  const auto* list = host::RecordOf<MimeEntityClassData>(entity.get())->Attachments.get();
  {
    const auto whole = host::ArrayRef::Adopt(List::Whole(entity.get()));
    EXPECT_EQ(whole.get(), list);
    EXPECT_EQ(LocksOf(list), 2);
    const auto variant = host::ObjectRef::Adopt(List::Variant(entity.get()));
    EXPECT_EQ(static_cast<const void*>(variant.get()), static_cast<const void*>(list));
    EXPECT_EQ(LocksOf(list), 3);
  }
  EXPECT_EQ(LocksOf(list), 1);
}

TEST_F(ListAccess, GivesNilWithoutAList) {
  const auto entity = EntityWithList(-1);
  EXPECT_EQ(List::Whole(entity.get()), nullptr);
  EXPECT_EQ(List::Variant(entity.get()), nullptr);
}

TEST_F(ListAccess, GivesEachElementWithOneLockMore) {
  const auto entity = EntityWithList(3);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto element =
        host::ObjectRef::Adopt(List::At(entity.get(), static_cast<abi::RBInteger>(i)));
    EXPECT_EQ(element.get(), elements_[i]);
    EXPECT_EQ(LocksOf(element.get()), 2);
  }
}

TEST_F(ListAccess, RaisesForAnIndexOutside) {
  const auto entity = EntityWithList(3);
  EXPECT_EQ(List::At(entity.get(), -1), nullptr);
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to 2, but "
            "value is -1.");
  EXPECT_EQ(List::At(entity.get(), 3), nullptr);
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to 2, but value "
            "is 3.");
}

TEST_F(ListAccess, RaisesForTheFirstElementOfAnEmptyList) {
  EXPECT_EQ(List::At(EntityWithList(0).get(), 0), nullptr);
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
}

TEST_F(ListAccess, WithoutAListRaisesNothingAndLogsIt) {
  const auto entity = EntityWithList(-1);
  const LogCapture log;
  EXPECT_EQ(List::At(entity.get(), -1), nullptr);
  EXPECT_EQ(TakeRaised(), "");
  EXPECT_EQ(log.Text(), Logged({"REALGetArrayObject Array is nil"}));
}

TEST_F(ListAccess, GivesNothingWithoutARecord) {
  EXPECT_EQ(List::Whole(nullptr), nullptr);
  EXPECT_EQ(List::Variant(nullptr), nullptr);
  EXPECT_EQ(List::At(nullptr, 0), nullptr);
  EXPECT_EQ(List::Count(nullptr), 0);
  EXPECT_EQ(objects::GetStored<&MimeEntityClassData::Source>(nullptr), nullptr);
}

TEST_F(ListAccess, RaisesWhatTheHostThrows) {
  StartObjectsWithFault("RuntimeUBound", {standin::Fault::Kind::kThrows});
  const auto entity = host::NewInstance<MimeEntityClassData>();
  host::RecordOf<MimeEntityClassData>(entity.get())->Attachments.Put(host::NewObjectArray());
  EXPECT_EQ(List::Count(entity.get()), 0);
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of RuntimeUBound");
  EXPECT_EQ(List::At(entity.get(), 0), nullptr);
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of RuntimeUBound");
}

TEST_F(ListAccess, StoredFieldsComeWithOneLockMore) {
  const auto entity = host::NewInstance<MimeEntityClassData>();
  auto& record = *host::RecordOf<MimeEntityClassData>(entity.get());
  record.Source.Put(NewText("source"));
  record.SentDate.Put(NewThing());
  const auto source =
      host::StringRef::Adopt(objects::GetStored<&MimeEntityClassData::Source>(entity.get()));
  const auto date =
      host::ObjectRef::Adopt(objects::GetStored<&MimeEntityClassData::SentDate>(entity.get()));
  EXPECT_EQ(source.get(), record.Source.get());
  EXPECT_EQ(LocksOf(source.get()), 2);
  EXPECT_EQ(date.get(), record.SentDate.get());
  EXPECT_EQ(LocksOf(date.get()), 2);
  EXPECT_EQ(objects::GetStored<&MimeEntityClassData::Subject>(entity.get()), nullptr);
}

TEST_F(ListAccess, GivesNilWhenTheHostCannotLock) {
  StartObjectsWithFault("REALLockObject");
  const auto entity = host::NewInstance<MimeEntityClassData>();
  host::RecordOf<MimeEntityClassData>(entity.get())->Attachments.Put(host::NewObjectArray());
  EXPECT_EQ(List::Whole(entity.get()), nullptr);
}

}  // namespace
}  // namespace zqv::test
