#include "objects/mailbox_list.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "mime/limits.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeMailboxClassData;
using objects::MimeMailboxListClassData;

class MailboxList : public ObjectsTest {
 protected:
  void TearDown() override {
    list_ = {};
    ObjectsTest::TearDown();
  }

  const MimeMailboxListClassData& Make(std::string_view text) {
    list_ = host::NewInstance<MimeMailboxListClassData>();
    objects::MimeMailboxListConstructor(list_.get(), NewText(text).get());
    return *host::RecordOf<MimeMailboxListClassData>(list_.get());
  }

  host::ObjectRef list_;
};

TEST_F(MailboxList, HasTheMailboxesWithTheirTexts) {
  const auto& record = Make("A <a@b>,c@d");
  EXPECT_EQ(Show(record.StringValue), Ascii("A <a@b>, c@d"));
  const auto mailboxes = RecordsIn<MimeMailboxClassData>(record.mailboxes.get());
  ASSERT_EQ(mailboxes.size(), 2U);
  EXPECT_EQ(Show(mailboxes[0]->StringValue), Ascii("A <a@b>"));
  EXPECT_EQ(Show(mailboxes[1]->StringValue), Ascii("c@d"));
}

// The text form of the list still has a mailbox without a local part.
TEST_F(MailboxList, LeavesOutAMailboxWithoutALocalPart) {
  const auto& record = Make("@b,a@b");
  const auto mailboxes = RecordsIn<MimeMailboxClassData>(record.mailboxes.get());
  ASSERT_EQ(mailboxes.size(), 1U);
  EXPECT_EQ(Show(mailboxes[0]->StringValue), Ascii("a@b"));
  EXPECT_EQ(Show(record.StringValue), Ascii("@b, a@b"));
}

TEST_F(MailboxList, OfNothingIsEmpty) {
  const auto& record = Make("");
  EXPECT_EQ(Show(record.StringValue), "nil");
  EXPECT_NE(record.mailboxes.get(), nullptr);
  EXPECT_EQ(objects::ListedMailboxes::Count(list_.get()), 0);
}

TEST_F(MailboxList, BeyondTheLimitRaisesAndHoldsNothing) {
  const auto& record = Make(std::string(mime::kMostEntries + 1, ','));
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the text has too many addresses");
  EXPECT_EQ(Show(record.StringValue), "nil");
  EXPECT_EQ(record.mailboxes.get(), nullptr);
}

TEST_F(MailboxList, DestructorGivesTheTextBackBeforeTheList) {
  Make("");
  auto& record = *host::RecordOf<MimeMailboxListClassData>(list_.get());
  record.StringValue.Put(NewText("x"));
  RecordUnlocks();
  const std::vector<const void*> expected = {list_.get(), record.StringValue.get(),
                                             record.mailboxes.get()};
  list_ = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeMailboxListDestructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
