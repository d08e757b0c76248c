#include "objects/mailbox.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "objects/switches.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeMailboxClassData;

class Mailbox : public ObjectsTest {
 protected:
  void TearDown() override {
    mailbox_ = {};
    objects::setRaiseUnknownFormatExceptions(0);
    ObjectsTest::TearDown();
  }

  // The record of a mailbox made from a text, as by an application.
  const MimeMailboxClassData& Make(std::string_view text) {
    mailbox_ = host::NewInstance<MimeMailboxClassData>();
    objects::MimeMailboxConstructor(mailbox_.get(), NewText(text).get());
    return *host::RecordOf<MimeMailboxClassData>(mailbox_.get());
  }
  std::string Email() const {
    return Show(host::StringRef::Adopt(objects::getEmail(mailbox_.get())));
  }

  host::ObjectRef mailbox_;
};

TEST_F(Mailbox, HasItsPieces) {
  const auto& record = Make("\"J. Smith\" <j.smith@example.org>");
  EXPECT_EQ(Show(record.Label), Ascii("\"J. Smith\""));
  EXPECT_EQ(Show(record.LabelDecoded), Ascii("J. Smith"));
  EXPECT_EQ(Show(record.Sourceroute), "nil");
  EXPECT_EQ(Show(record.Mailbox), Ascii("j.smith"));
  EXPECT_EQ(Show(record.Domain), Ascii("example.org"));
  EXPECT_EQ(Show(record.StringValue), Ascii("\"J. Smith\" <j.smith@example.org>"));
  EXPECT_EQ(Email(), Ascii("j.smith@example.org"));
}

TEST_F(Mailbox, WithARouteHasIt) {
  const auto& record = Make("<@relay.org:a@b>");
  EXPECT_EQ(Show(record.Sourceroute), Ascii("@relay.org"));
  EXPECT_EQ(Show(record.Mailbox), Ascii("a"));
  EXPECT_EQ(Email(), Ascii("a@b"));
}

TEST_F(Mailbox, WithoutALabelHasNone) {
  const auto& record = Make("a@b");
  EXPECT_EQ(Show(record.Label), "nil");
  EXPECT_EQ(Show(record.LabelDecoded), "nil");
  EXPECT_EQ(Show(record.Sourceroute), "nil");
  EXPECT_EQ(Show(record.StringValue), Ascii("a@b"));
}

TEST_F(Mailbox, LabelIsDecodedBesideTheOneThatIsNot) {
  const auto& record = Make("=?utf-8?Q?Caf=C3=A9?= <a@b>");
  EXPECT_EQ(Show(record.Label), Ascii("=?utf-8?Q?Caf=C3=A9?="));
  EXPECT_EQ(Show(record.LabelDecoded), Utf8("Caf\xC3\xA9"));
}

TEST_F(Mailbox, LabelOfAnUnknownCharsetRaisesWhenAskedTo) {
  objects::setRaiseUnknownFormatExceptions(1);
  const auto& record = Make("=?foo?Q?x?= <a@b>");
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: foo");
  EXPECT_EQ(Show(record.LabelDecoded), Ascii("=?foo?Q?x?="));
  EXPECT_EQ(Show(record.Mailbox), Ascii("a"));
}

TEST_F(Mailbox, EmailIsNilOnlyWithoutBothHalves) {
  Make("");
  EXPECT_EQ(Email(), "nil");
  auto& record = *host::RecordOf<MimeMailboxClassData>(mailbox_.get());
  record.Mailbox.Put(NewText("a"));
  EXPECT_EQ(Email(), Utf8("a@"));
  record.Mailbox.Clear();
  record.Domain.Put(NewText("b"));
  EXPECT_EQ(Email(), Utf8("@b"));
  EXPECT_EQ(objects::getEmail(nullptr), nullptr);
}

TEST_F(Mailbox, MadeTwiceHoldsTheSecondText) {
  Make("A <a@b>");
  objects::MimeMailboxConstructor(mailbox_.get(), NewText("c@d").get());
  const auto& record = *host::RecordOf<MimeMailboxClassData>(mailbox_.get());
  EXPECT_EQ(Show(record.Label), "nil");
  EXPECT_EQ(Show(record.Mailbox), Ascii("c"));
}

TEST_F(Mailbox, FromAnyNumberOfCommasIsMade) {
  Make(std::string(100'000, ','));
  EXPECT_EQ(TakeRaised(), "") << "a mailbox counts as one entry of the limit";
}

TEST_F(Mailbox, DestructorGivesEverythingBackInOrder) {
  Make("A <@c:a@b>");
  RecordUnlocks();
  const auto& record = *host::RecordOf<MimeMailboxClassData>(mailbox_.get());
  const std::vector<const void*> expected = {
      mailbox_.get(),     record.StringValue.get(),  record.Mailbox.get(),    record.Domain.get(),
      record.Label.get(), record.LabelDecoded.get(), record.Sourceroute.get()};
  mailbox_ = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeMailboxDestructor(nullptr);
}

// The label of each mailbox, or its text when it has no label.
std::vector<std::string> TextsIn(abi::REALarray array) {
  std::vector<std::string> texts;
  for (const auto* mailbox : RecordsIn<MimeMailboxClassData>(array)) {
    texts.push_back(Show(mailbox->StringValue));
  }
  return texts;
}

class MailboxArray : public ObjectsTest {
 protected:
  static host::ArrayRef Make(const std::string& text) {
    const mime::MailboxList list(text);
    return objects::NewMailboxArray({list.begin(), list.size()});
  }
};

TEST_F(MailboxArray, LeavesOutThoseWithoutALocalPart) {
  const auto array = Make("a@b,,nobody,@c,C <c@d>");
  EXPECT_EQ(TextsIn(array.get()), (std::vector<std::string>{Ascii("a@b"), Ascii("C <c@d>")}));
}

TEST_F(MailboxArray, OfNobodyIsEmpty) {
  const auto array = Make("");
  ASSERT_TRUE(array);
  EXPECT_EQ(host::ArrayCount(array.get()), 0);
}

TEST_F(MailboxArray, IsNilWhenTheHostCannotMakeOne) {
  StartObjectsWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_FALSE(Make("a@b"));
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(MailboxArray, LeavesOutThoseThatTheHostCannotMake) {
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 2, 1});
  const auto array = Make("a@b,c@d,e@f");
  EXPECT_EQ(TextsIn(array.get()), (std::vector<std::string>{Ascii("a@b"), Ascii("e@f")}));
}

}  // namespace
}  // namespace zqv::test
