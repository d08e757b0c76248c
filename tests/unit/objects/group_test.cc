#include "objects/group.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "mime/limits.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeGroupClassData;
using objects::MimeMailboxClassData;

class Group : public ObjectsTest {
 protected:
  void TearDown() override {
    group_ = {};
    ObjectsTest::TearDown();
  }

  const MimeGroupClassData& Make(std::string_view text) {
    group_ = host::NewInstance<MimeGroupClassData>();
    objects::MimeGroupConstructor(group_.get(), NewText(text).get());
    return *host::RecordOf<MimeGroupClassData>(group_.get());
  }

  host::ObjectRef group_;
};

TEST_F(Group, HasItsNameAndMailboxes) {
  const auto& record = Make("Team: a@b,C <c@d>;");
  EXPECT_EQ(Show(record.Name), Ascii("Team"));
  EXPECT_EQ(Show(record.NameDecoded), Ascii("Team"));
  EXPECT_EQ(Show(record.StringValue), Ascii("Teama@b,C <c@d>;"))
      << "without the colon, and without blanks after commas";
  const auto mailboxes = RecordsIn<MimeMailboxClassData>(record.mailboxes.get());
  ASSERT_EQ(mailboxes.size(), 2U);
  EXPECT_EQ(Show(mailboxes[0]->StringValue), Ascii("a@b"));
  EXPECT_EQ(Show(mailboxes[1]->Label), Ascii("C"));
}

TEST_F(Group, NameIsDecodedAndKeepsItsQuotes) {
  EXPECT_EQ(Show(Make("=?utf-8?Q?Caf=C3=A9?=: a@b;").NameDecoded), Utf8("Caf\xC3\xA9"));
  EXPECT_EQ(Show(Make("\"The team\": a@b;").NameDecoded), Ascii("\"The team\""));
}

TEST_F(Group, NameKeepsItsComment) {
  const auto& record = Make("Friends (of mine): a@b.example;");
  EXPECT_EQ(Show(record.Name), Ascii("Friends (of mine)"));
  EXPECT_EQ(Show(record.NameDecoded), Ascii("Friends (of mine)"));
  EXPECT_EQ(Show(record.StringValue), Ascii("Friends (of mine)a@b.example;"));
  EXPECT_EQ(objects::GroupMailboxes::Count(group_.get()), 1);
}

TEST_F(Group, LeavesOutMailboxesWithoutALocalPart) {
  const auto& record = Make("Team: a@b, nobody;");
  EXPECT_EQ(objects::GroupMailboxes::Count(group_.get()), 1);
  EXPECT_EQ(Show(record.Name), Ascii("Team"));
}

TEST_F(Group, WithoutMailboxesHasAnEmptyList) {
  const auto& record = Make("undisclosed-recipients:;");
  EXPECT_EQ(Show(record.Name), Ascii("undisclosed-recipients"));
  EXPECT_EQ(Show(record.StringValue), Ascii("undisclosed-recipients@;"))
      << "mimetic gives one empty mailbox";
  EXPECT_NE(record.mailboxes.get(), nullptr);
  EXPECT_EQ(objects::GroupMailboxes::Count(group_.get()), 0);
}

TEST_F(Group, BeyondTheLimitRaises) {
  const auto& record = Make("Team: " + std::string(mime::kMostEntries, ',') + ";");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the text has too many addresses");
  EXPECT_EQ(Show(record.StringValue), "nil");
}

TEST_F(Group, DestructorGivesEverythingBackInOrder) {
  Make("Team:;");
  RecordUnlocks();
  const auto& record = *host::RecordOf<MimeGroupClassData>(group_.get());
  const std::vector<const void*> expected = {group_.get(), record.StringValue.get(),
                                             record.Name.get(), record.NameDecoded.get(),
                                             record.mailboxes.get()};
  group_ = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeGroupDestructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
