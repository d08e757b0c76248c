#include "objects/address.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "mime/limits.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeAddressClassData;
using objects::MimeGroupClassData;
using objects::MimeMailboxClassData;

class Address : public ObjectsTest {
 protected:
  void TearDown() override {
    address_ = {};
    ObjectsTest::TearDown();
  }

  const MimeAddressClassData& Make(std::string_view text) {
    address_ = host::NewInstance<MimeAddressClassData>();
    objects::MimeAddressConstructor(address_.get(), NewText(text).get());
    return *host::RecordOf<MimeAddressClassData>(address_.get());
  }

  host::ObjectRef address_;
};

TEST_F(Address, OfAMailboxHasIt) {
  const auto& record = Make("A <a@b>");
  EXPECT_EQ(record.isGroup, 0);
  EXPECT_EQ(Show(record.StringValue), Ascii("A <a@b>"));
  EXPECT_EQ(record.Group.get(), nullptr);
  const auto* mailbox = host::RecordOf<MimeMailboxClassData>(record.Mailbox.get());
  ASSERT_NE(mailbox, nullptr);
  EXPECT_EQ(Show(mailbox->Label), Ascii("A"));
  EXPECT_EQ(Show(mailbox->StringValue), Ascii("A <a@b>"));
}

TEST_F(Address, OfAGroupHasIt) {
  const auto& record = Make("Team: a@b;");
  EXPECT_EQ(record.isGroup, 1);
  EXPECT_EQ(record.Mailbox.get(), nullptr);
  const auto* group = host::RecordOf<MimeGroupClassData>(record.Group.get());
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(Show(group->Name), Ascii("Team"));
}

TEST_F(Address, WithoutALocalPartHasNoMailbox) {
  for (const char* text : {"", "@b", "nobody"}) {
    const auto& record = Make(text);
    EXPECT_EQ(record.isGroup, 0) << text;
    EXPECT_EQ(record.Mailbox.get(), nullptr) << text;
    EXPECT_EQ(record.Group.get(), nullptr) << text;
  }
}

TEST_F(Address, OfAGroupWithANameOrMembersHasIt) {
  EXPECT_NE(Make("Team:;").Group.get(), nullptr);
  EXPECT_NE(Make(": a@b;").Group.get(), nullptr);
}

TEST_F(Address, OfAGroupWithNeitherHasNone) {
  const auto& record = Make(":");
  EXPECT_EQ(record.isGroup, 1);
  EXPECT_EQ(record.Group.get(), nullptr);
}

TEST_F(Address, IsWithoutAnObjectThatTheHostCannotMake) {
  StartObjectsWithoutClass("MimeMailboxZQV");
  const auto& record = Make("a@b");
  EXPECT_EQ(Show(record.StringValue), Ascii("a@b"));
  EXPECT_EQ(record.Mailbox.get(), nullptr);
}

TEST_F(Address, BeyondTheLimitRaises) {
  Make("Team:" + std::string(mime::kMostEntries + 1, ','));
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the text has too many addresses");
}

TEST_F(Address, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  address_ = host::NewInstance<MimeAddressClassData>();
  auto& record = *host::RecordOf<MimeAddressClassData>(address_.get());
  record.Group.Put(NewThing());
  record.Mailbox.Put(NewThing());
  record.StringValue.Put(NewText("x"));
  const std::vector<const void*> expected = {address_.get(), record.Group.get(),
                                             record.Mailbox.get(), record.StringValue.get()};
  address_ = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeAddressDestructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
