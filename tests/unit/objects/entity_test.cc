#include "objects/entity.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeEntityClassData;

class Entity : public ObjectsTest {
 protected:
  // A record in which every field holds something of its own.
  static void Fill(MimeEntityClassData& record) {
    record.Header.Put(NewThing());
    record.Body.Put(NewThing());
    record.BodyDecoded.Put(NewText("BodyDecoded"));
    record.Source.Put(NewText("Source"));
    record.Subject.Put(NewText("Subject"));
    record.PlainText.Put(NewText("PlainText"));
    record.HTMLText.Put(NewText("HTMLText"));
    record.Attachments.Put(host::NewObjectArray());
    record.Inlines.Put(host::NewObjectArray());
    record.SentDate.Put(NewThing());
    record.ReceivedDate.Put(NewThing());
  }

  // What the record holds, in the order in which it is given back.
  static std::vector<const void*> Held(const MimeEntityClassData& record) {
    return {record.Header.get(),   record.Body.get(),        record.PlainText.get(),
            record.HTMLText.get(), record.BodyDecoded.get(), record.Subject.get(),
            record.Source.get(),   record.Attachments.get(), record.Inlines.get(),
            record.SentDate.get(), record.ReceivedDate.get()};
  }

  static const std::vector<const void*>& Nothing() {
    static const std::vector<const void*> nothing(11, nullptr);
    return nothing;
  }
};

TEST_F(Entity, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  auto entity = host::NewInstance<MimeEntityClassData>();
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(entity.get());
  Fill(record);
  std::vector<const void*> expected = Held(record);
  expected.insert(expected.begin(), entity.get());
  entity = {};
  EXPECT_EQ(Unlocked(), expected);
}

// MimeEmailZQV has neither a record nor a destructor of its own.
TEST_F(Entity, DestructorServesASubclassWithoutData) {
  static abi::REALclassDefinition email;
  email = MadeUpClass("MimeEmailZQV", 0, nullptr, "MimeEntityZQV");
  RegisterDefinition(email);
  RecordUnlocks();
  auto object = host::ObjectRef::Adopt(host::entry::PluginNewInstance("MimeEmailZQV"));
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(object.get());
  EXPECT_EQ(Held(record), Nothing());
  Fill(record);
  std::vector<const void*> expected = Held(record);
  expected.insert(expected.begin(), object.get());
  object = {};
  EXPECT_EQ(Unlocked(), expected);
}

TEST_F(Entity, ClearLeavesNothing) {
  const auto entity = host::NewInstance<MimeEntityClassData>();
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(entity.get());
  Fill(record);
  objects::Clear(record);
  EXPECT_EQ(Held(record), Nothing());
  EXPECT_EQ(host().ledger().Live().Total(), 1) << "the entity itself";
  objects::Clear(record);
}

TEST_F(Entity, MadeByTheApplicationIsEmpty) {
  RecordUnlocks();
  auto entity = host::NewInstance<MimeEntityClassData>();
  objects::MimeEntityConstructor(entity.get());
  EXPECT_EQ(Held(*host::RecordOf<MimeEntityClassData>(entity.get())), Nothing());
  const std::vector<const void*> expected = {entity.get()};
  entity = {};
  EXPECT_EQ(Unlocked(), expected);
}

TEST_F(Entity, DestructorWithoutARecordDoesNothing) {
  objects::MimeEntityDestructor(nullptr);
  const auto entity = host::NewInstance<MimeEntityClassData>();
  host::BindRecord<MimeEntityClassData>(nullptr);
  objects::MimeEntityDestructor(entity.get());
}

// A host that cannot take things back leaves the record empty all the same.
TEST_F(Entity, DestructorEmptiesTheRecordWhenTheHostCannotUnlock) {
  StartObjectsWithFault("REALUnlockString");
  const auto entity = host::NewInstance<MimeEntityClassData>();
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(entity.get());
  Fill(record);
  objects::MimeEntityDestructor(entity.get());
  EXPECT_EQ(Held(record), Nothing());
}

}  // namespace
}  // namespace zqv::test
