#include "objects/body.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/unit/mime/nested_message.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeBodyClassData;
using objects::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A nested message. The type of each part names the part.
constexpr char kNested[] =
    "Content-Type: multipart/mixed; boundary=o\n"
    "\n"
    "before\n"
    "--o\n"
    "Content-Type: multipart/x; boundary=i; name=inner\n"
    "\n"
    "--i\n"
    "Content-Type: x/y; name=first\n"
    "\n"
    "one\n"
    "--i\n"
    "Content-Type: x/y; name=second\n"
    "\n"
    "two\n"
    "--i--\n"
    "--o\n"
    "Content-Type: x/y; name=last\n"
    "\n"
    "three\n"
    "--o--\n"
    "after\n";

class Body : public EmailTest {
 protected:
  void TearDown() override {
    email_ = {};
    EmailTest::TearDown();
  }

  // The record of the body of `message`.
  const MimeBodyClassData& Build(std::string_view message) {
    email_ = ParseEmail(message);
    return BodyOf(RecordOf(email_));
  }

  static MimeBodyClassData& BodyOf(const MimeEntityClassData& entity) {
    return *host::RecordOf<MimeBodyClassData>(entity.Body.get());
  }
  std::vector<MimeEntityClassData*> TopParts() { return Parts(RecordOf(email_)); }
  abi::REALobject Object() { return RecordOf(email_).Body.get(); }
  std::vector<std::string> Listed() { return Names(Attachments(email_)); }

  host::ObjectRef email_;
};

TEST_F(Body, PartsAreFilledBeforeThePartsAroundThemInTheOrderOfTheMessage) {
  Build(kNested);
  EXPECT_THAT(Listed(),
              ElementsAre(Ascii("first"), Ascii("second"), Ascii("inner"), Ascii("last")));
}

TEST_F(Body, HoldsTheEntitiesOfItsParts) {
  Build(kNested);
  const auto outer = TopParts();
  ASSERT_EQ(outer.size(), 2U);
  const auto inner = Parts(*outer[0]);
  ASSERT_EQ(inner.size(), 2U);
  for (const MimeEntityClassData* entity : {inner[0], inner[1], outer[0], outer[1]}) {
    EXPECT_NE(entity->Body.get(), nullptr);
    EXPECT_NE(entity->Header.get(), nullptr);
  }
  EXPECT_EQ(Show(inner[0]->BodyDecoded), Ascii("one"));
  EXPECT_EQ(Show(inner[1]->BodyDecoded), Ascii("two"));
  EXPECT_EQ(Show(outer[1]->BodyDecoded), Ascii("three"));
}

TEST_F(Body, HoldsPreambleEpilogueAndOwnText) {
  const MimeBodyClassData& top = Build(kNested);
  EXPECT_EQ(Show(top.preamble), Ascii("before"));
  EXPECT_EQ(Show(top.epilogue), Ascii("after\n"));
  EXPECT_EQ(Show(top.StringValue), "nil");
  const MimeBodyClassData& last = BodyOf(*TopParts()[1]);
  EXPECT_EQ(Show(last.preamble), "nil");
  EXPECT_EQ(Show(last.epilogue), "nil");
  EXPECT_EQ(Show(last.StringValue), Ascii("three"));
}

TEST_F(Body, TextIsAsItStandsInTheMessage) {
  const MimeBodyClassData& body = Build(
      "Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: base64\n\n"
      "Y2Fm6Q==\n");
  EXPECT_EQ(Show(body.StringValue), Ascii("Y2Fm6Q==\n"));
}

TEST_F(Body, TextTakesItsEncodingFromItsBytesAndEndsAtANul) {
  EXPECT_EQ(Show(Build("A: b\n\ncaf\xC3\xA9").StringValue), Utf8("caf\xC3\xA9"));
  EXPECT_EQ(Show(Build("A: b\n\ncaf\xE9").StringValue), MacRoman("caf\xE9"));
  EXPECT_EQ(Show(Build({"A: b\n\none\0two", 13}).StringValue), Ascii("one"));
  EXPECT_EQ(Show(Build({"A: b\n\n\0two", 10}).StringValue), "nil");
}

// A line that is not a field ends the header, and is the first line of the body.
TEST_F(Body, BeginsWithALineThatIsNoField) {
  EXPECT_EQ(Show(Build("A: b\nno field\nrest\n").StringValue), Ascii("no field\nrest\n"));
}

TEST_F(Body, OfASinglePartHasAnEmptyListAndNotNil) {
  EXPECT_NE(Build("A: b\n\ntext\n").parts.get(), nullptr);
  EXPECT_EQ(objects::BodyParts::Count(Object()), 0);
  EXPECT_EQ(objects::BodyParts::At(Object(), 0), nullptr);
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
}

TEST_F(Body, TreeIsAsDeepAsTheNesting) {
  const MimeBodyClassData* inner = &Build(NestedMessage(Nesting::kBoth, 6));
  int levels = 0;
  while (host::ArrayCount(inner->parts.get()) == 1) {
    inner = &BodyOf(*RecordsIn<MimeEntityClassData>(inner->parts.get())[0]);
    ++levels;
  }
  EXPECT_EQ(levels, 6);
  EXPECT_EQ(Show(inner->StringValue), Ascii("end\n"));
}

TEST_F(Body, IsNilWhenTheHostCannotMakeOne) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert("MimeBodyZQV");
  StartEmail(capabilities);
  email_ = ParseEmail(kNested);
  EXPECT_FALSE(RecordOf(email_).Body);
  EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Body, IsNilWhenItsClassWasNeverRegistered) {
  host::BindRecord<MimeBodyClassData>(nullptr);
  email_ = ParseEmail(kNested);
  EXPECT_FALSE(RecordOf(email_).Body);
  objects::MimeBodyDestructor(nullptr);
}

// Instances are created in this order: the body of the message, then for each part its entity, body
// and header.
TEST_F(Body, OfAPartIsNilWhenTheHostCannotMakeIt) {
  StartEmailWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 3, 1});
  Build("Content-Type: multipart/mixed; boundary=o\n\n--o\nX-Name: a\n\n1\n--o--\n");
  ASSERT_EQ(TopParts().size(), 1U);
  EXPECT_EQ(TopParts()[0]->Body.get(), nullptr);
  EXPECT_NE(TopParts()[0]->Header.get(), nullptr);
  EXPECT_EQ(Show(TopParts()[0]->BodyDecoded), Ascii("1"));
}

TEST_F(Body, OfAnInnerMultipartThatTheHostCannotMakeTakesItsPartsAlong) {
  StartEmailWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 3, 1});
  Build(kNested);
  EXPECT_THAT(Listed(), ElementsAre(Ascii("inner"), Ascii("last")));
  ASSERT_EQ(TopParts().size(), 2U);
  EXPECT_EQ(TopParts()[0]->Body.get(), nullptr);
}

TEST_F(Body, IsFilledWithEntitiesWithoutAHeaderObject) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert("MimeHeaderZQV");
  StartEmail(capabilities);
  Build(kNested);
  EXPECT_THAT(Listed(),
              ElementsAre(Ascii("first"), Ascii("second"), Ascii("inner"), Ascii("last")));
  for (const MimeEntityClassData* entity : TopParts()) {
    EXPECT_EQ(entity->Header.get(), nullptr);
    EXPECT_NE(entity->Body.get(), nullptr);
  }
}

TEST_F(Body, SkipsAnEntityThatTheHostCannotMakeWithItsParts) {
  StartEmailWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 2, 1});
  Build(kNested);
  EXPECT_THAT(Listed(), ElementsAre(Ascii("last")));
  EXPECT_EQ(objects::BodyParts::Count(Object()), 1);
}

TEST_F(Body, WithoutAListIsWalkedAndGivesTheEntitiesBack) {
  StartEmailWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  const MimeBodyClassData& body =
      Build(Mixed({"Content-Type: text/plain\n\none", "Content-Type: text/html\n\ntwo"}));
  EXPECT_EQ(Show(RecordOf(email_).PlainText), Ascii("one"));
  EXPECT_EQ(Show(RecordOf(email_).HTMLText), Ascii("two"));
  EXPECT_EQ(body.parts.get(), nullptr);
  EXPECT_EQ(host().ledger().Live().objects, 3)
      << "only the message, its body and its header are left";
}

TEST_F(Body, DropsEntitiesThatTheHostCannotInsert) {
  StartEmailWithFault("PluginObjectArrayInsertProc");
  Build(Mixed({"Content-Type: text/plain\n\none", "Content-Type: text/html\n\ntwo"}));
  EXPECT_EQ(Show(RecordOf(email_).PlainText), Ascii("one"));
  EXPECT_EQ(objects::BodyParts::Count(Object()), 0);
  EXPECT_EQ(host().ledger().Live().objects, 3)
      << "only the message, its body and its header are left";
}

TEST_F(Body, MembersGiveTheListItself) {
  const MimeBodyClassData& body = Build(kNested);
  const abi::REALobject self = Object();
  const auto whole = host::ArrayRef::Adopt(objects::BodyParts::Whole(self));
  const auto again = host::ArrayRef::Adopt(objects::BodyParts::Whole(self));
  const auto variant = host::ObjectRef::Adopt(objects::BodyParts::Variant(self));
  EXPECT_EQ(whole.get(), body.parts.get());
  EXPECT_EQ(again.get(), whole.get());
  EXPECT_EQ(static_cast<void*>(variant.get()), static_cast<void*>(whole.get()));
  EXPECT_EQ(LocksOf(whole.get()), 4) << "two of the record, two of this test";
}

TEST_F(Body, LivesOnInAPartThatIsHeld) {
  Build(Mixed({"Content-Type: multipart/mixed; boundary=i\n\n--i\n\none\n--i\n\ntwo\n--i--"}));
  const auto inner = host::ObjectRef::Adopt(objects::BodyParts::At(Object(), 0));
  email_ = {};
  const auto& entity = *host::RecordOf<MimeEntityClassData>(inner.get());
  EXPECT_EQ(Show(BodyOf(*Parts(entity)[1]).StringValue), Ascii("two"));
}

TEST_F(Body, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  auto body = host::NewInstance<MimeBodyClassData>();
  MimeBodyClassData& record = *host::RecordOf<MimeBodyClassData>(body.get());
  record.preamble.Put(NewText("p"));
  record.epilogue.Put(NewText("e"));
  record.StringValue.Put(NewText("s"));
  record.parts.Put(host::NewObjectArray());
  const std::vector<const void*> expected = {body.get(), record.preamble.get(),
                                             record.epilogue.get(), record.StringValue.get(),
                                             record.parts.get()};
  body = {};
  EXPECT_EQ(Unlocked(), expected);
}

TEST_F(Body, ConstructorAndDestructorOfAnEmptyObjectDoNothing) {
  RecordUnlocks();
  auto body = host::NewInstance<MimeBodyClassData>();
  objects::MimeBodyConstructor(body.get());
  EXPECT_EQ(objects::BodyParts::Whole(body.get()), nullptr);
  EXPECT_EQ(objects::BodyParts::Variant(body.get()), nullptr);
  const std::vector<const void*> expected = {body.get()};
  body = {};
  EXPECT_EQ(Unlocked(), expected);
}

}  // namespace
}  // namespace zqv::test
