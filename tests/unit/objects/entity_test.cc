#include "objects/entity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "objects/switches.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Entity : public ObjectsTest {
 protected:
  // Fills every field of a record with an object or string of its own.
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

  // The contents of a record in the order in which the destructor gives them back.
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

// MimeEmailZQV inherits from MimeEntityZQV without a destructor of its own.
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
  EXPECT_EQ(host().ledger().Live().Total(), 1) << "only the entity itself is left";
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

// The destructor empties the record even when the host offers no function to unlock.
TEST_F(Entity, DestructorEmptiesTheRecordWhenTheHostCannotUnlock) {
  StartObjectsWithFault("REALUnlockString");
  const auto entity = host::NewInstance<MimeEntityClassData>();
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(entity.get());
  Fill(record);
  objects::MimeEntityDestructor(entity.get());
  EXPECT_EQ(Held(record), Nothing());
}

// Tests to which property of the message a part's contents go.
class Routing : public EmailTest {};

TEST_F(Routing, PlainTextMarkedAttachmentIsListedAndNoText) {
  const auto email = ParseEmail(Mixed(
      {"Content-Type: text/plain; charset=utf-8\nContent-Disposition: attachment\n\ncaf\xC3\xA9"}));
  ASSERT_EQ(Attachments(email).size(), 1U);
  EXPECT_EQ(Show(Attachments(email)[0]->Data), Utf8("caf\xC3\xA9"));
  EXPECT_THAT(Inlines(email), IsEmpty());
  EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
}

TEST_F(Routing, UnknownMechanismIsIgnoredEntirely) {
  const auto email = ParseEmail(
      Mixed({"Content-Type: text/plain\nContent-Transfer-Encoding: x-uuencode\n\nbegin"}));
  EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
  EXPECT_THAT(Inlines(email), IsEmpty());
  ASSERT_EQ(Parts(RecordOf(email)).size(), 1U);
  EXPECT_EQ(Show(Parts(RecordOf(email))[0]->BodyDecoded), "nil");
}

TEST_F(Routing, TextWithoutCharsetTakesItsEncodingFromItsBytes) {
  const auto text = [](const char* body) {
    const auto email = ParseEmail(Mixed({std::string("Content-Type: text/plain\n\n") + body}));
    return Show(RecordOf(email).PlainText);
  };
  EXPECT_EQ(text("cafe"), Ascii("cafe"));
  EXPECT_EQ(text("\xC3\xA9"), Utf8("\xC3\xA9"));
  EXPECT_EQ(text("\xE9"), MacRoman("\xE9"));
}

TEST_F(Routing, TextIsInItsCharset) {
  const auto text = [](const std::string& charset, std::string_view body = "\xE9") {
    const auto email = ParseEmail(
        Mixed({"Content-Type: text/plain; charset=\"" + charset + "\"\n\n" + std::string(body)}));
    return Show(RecordOf(email).PlainText);
  };
  EXPECT_EQ(text("ISO-8859-15"), Shown(0x020F, "\xE9"));
  EXPECT_EQ(text("KOI8-R"), Shown(0x0A02, "\xE9"));
  EXPECT_EQ(text("iso-8859-1"), Shown(abi::kIsoLatin1, "\xE9"));
  EXPECT_EQ(text("foo"), Shown(abi::kUnknownEncoding, "\xE9"));
  EXPECT_EQ(text("utf-8", ""), "nil");
  EXPECT_EQ(text("", ""), "nil");
}

TEST_F(Routing, TextOfUtf16ComesOutAsUtf8) {
  const auto message = Parse("Content-Type: text/plain; charset=utf-16\n\n");
  EXPECT_EQ(Show(objects::BuildBodyText(message->Header(), {"\xE9\x00", 2})), Utf8("\xC3\xA9"));
}

TEST_F(Routing, UnknownCharsetRaisesWhenAskedToAndGoesOn) {
  objects::setRaiseUnknownFormatExceptions(1);
  const auto email = ParseEmail(Mixed({"Content-Type: text/plain; charset=foo\n\n\xE9",
                                       "Content-Type: text/html; charset=utf-8\n\n<p>x</p>"}));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: foo");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Shown(abi::kUnknownEncoding, "\xE9"));
  EXPECT_EQ(Show(RecordOf(email).HTMLText), Utf8("<p>x</p>"));
}

TEST_F(Routing, ImagesGoByDispositionAndContentId) {
  const std::string type = "Content-Type: image/png\n";
  const auto email = ParseEmail(Mixed({
      type + "Content-Disposition: inline; filename=a\n\nx",
      type + "Content-ID: <i>\nContent-Disposition: x-other; filename=b\n\nx",
      type + "Content-Disposition: x-other; filename=c\n\nx",
      type + "Content-ID:\nContent-Disposition: x-other; filename=d\n\nx",
      type + "Content-ID: <i>\nContent-Disposition: attachment; filename=e\n\nx",
  }));
  EXPECT_THAT(Names(Inlines(email)), ElementsAre(Ascii("a"), Ascii("b")));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("c"), Ascii("d"), Ascii("e")));
}

TEST_F(Routing, ImageWithoutDispositionGoesByItsContentId) {
  const auto email = ParseEmail(Mixed({"Content-Type: image/png; name=a\nContent-ID: <i>\n\nx",
                                       "Content-Type: image/png; name=b\n\nx"}));
  EXPECT_THAT(Names(Inlines(email)), ElementsAre(Ascii("a")));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("b")));
}

TEST_F(Routing, SignedMultipartIsListedItself) {
  const auto email = ParseEmail(
      Mixed({"Content-Type: multipart/signed; boundary=s; name=container\n\n"
             "--s\nContent-Type: text/plain\n\nsigned\n"
             "--s\nContent-Type: application/pgp-signature; name=signature\n\nsig\n--s--\n"}));
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("signed"));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("signature"), Ascii("container")));
  EXPECT_EQ(Show(Attachments(email)[1]->Data), "nil");
}

TEST_F(Routing, EmptyTextLeavesTheNextOneItsPlace) {
  const auto email =
      ParseEmail(Mixed({"Content-Type: text/plain\n\n", "Content-Type: text/plain\n\nsecond"}));
  EXPECT_EQ(Show(Parts(RecordOf(email))[0]->BodyDecoded), "nil");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("second"));
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(Routing, SharesTheTextBetweenThePartAndTheMessage) {
  const auto email =
      ParseEmail(Mixed({"Content-Type: text/plain\n\none", "Content-Type: text/html\n\ntwo"}));
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_EQ(record.PlainText.get(), Parts(record)[0]->BodyDecoded.get());
  EXPECT_EQ(record.HTMLText.get(), Parts(record)[1]->BodyDecoded.get());
  EXPECT_EQ(LocksOf(record.PlainText.get()), 2);
}

TEST_F(Routing, LogsEachDecision) {
  const auto message = Mixed({"Content-Type: text/plain\n\none", "Content-Type: Text/HTML\n\ntwo",
                              "Content-Type: image/png\n\nthree"});
  const LogCapture log;
  const auto email = ParseEmail(message);
  EXPECT_THAT(log.Text(), ::testing::HasSubstr(
                              Logged({"decoded body of type text, plain", "Set email plainText",
                                      "decoded body of type Text, HTML", "Set email htmlText",
                                      "decoded body of type image, png"})));
}

TEST_F(Routing, DatesEveryPart) {
  const auto email = ParseEmail(Mixed({"Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nx", "X: y\n\nx"}));
  EXPECT_NE(DateText(Parts(RecordOf(email))[0]->SentDate), "nil");
  EXPECT_EQ(DateText(Parts(RecordOf(email))[1]->SentDate), "nil");
  EXPECT_EQ(DateText(RecordOf(email).SentDate), "nil");
}

}  // namespace
}  // namespace zqv::test
