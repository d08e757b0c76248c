#include "objects/header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/errors.h"
#include "objects/field.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using mime::FieldName;
using objects::MimeFieldClassData;
using objects::MimeHeaderClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kWholeHeader[] =
    "MIME-Version: 1.0\n"
    "Content-Type: Text/Plain; charset=utf-8; name=\"a b\"\n"
    "Content-Transfer-Encoding: Base64\n"
    "Content-Disposition: attachment; filename=x.txt\n"
    "Content-Description: a text\n"
    "Content-ID: <part1@example.com>\n"
    "Subject: =?utf-8?Q?Caf=C3=A9?=\n"
    "Message-ID: <m1@example.com>\n"
    "\n";

class Header : public ObjectsTest {
 protected:
  host::ObjectRef Build(std::string_view message) {
    return objects::NewMimeHeaderZQV(Parse(message)->Header());
  }

  static MimeHeaderClassData& RecordOf(const host::ObjectRef& header) {
    return *host::RecordOf<MimeHeaderClassData>(header.get());
  }

  // Each field object as "Name: value". Names and values must be ASCII.
  static std::vector<std::string> Fields(const host::ObjectRef& header) {
    std::vector<std::string> fields;
    for (const auto* field : RecordsIn<MimeFieldClassData>(RecordOf(header).fields.get()))
      fields.push_back(Show(field->Name) + ": " + Show(field->Value));
    return fields;
  }
  static std::string Shown(std::string_view name, std::string_view value) {
    return Ascii(name) + ": " + Ascii(value);
  }

  static bool Has(const host::ObjectRef& header, std::string_view name) {
    return objects::hasField(header.get(), NewText(name).get()) != 0;
  }
  // The value of the field that was found; "none" when none was.
  static std::string Find(const host::ObjectRef& header, std::string_view name) {
    const auto field =
        host::ObjectRef::Adopt(objects::FieldByName(header.get(), NewText(name).get()));
    return field ? Show(host::RecordOf<MimeFieldClassData>(field.get())->Value) : "none";
  }
};

TEST_F(Header, HoldsTheTextFormOfEveryKnownField) {
  const auto header = Build(kWholeHeader);
  const MimeHeaderClassData& record = RecordOf(header);
  EXPECT_EQ(Show(record.MimeVersion), Ascii("1.0"));
  EXPECT_EQ(Show(record.ContentType), Ascii("Text/Plain; charset=\"utf-8\"; name=\"a b\""));
  EXPECT_EQ(Show(record.ContentTransferEncoding), Ascii("Base64"));
  EXPECT_EQ(Show(record.ContentTransferEncodingMechanism), Ascii("Base64"));
  EXPECT_EQ(Show(record.ContentDisposition), Ascii("attachment; filename=\"x.txt\""));
  EXPECT_EQ(Show(record.ContentDescription), Ascii("a text"));
  EXPECT_EQ(Show(record.contentId), Ascii("<part1@example.com>"));
  EXPECT_EQ(Show(record.messageid), Ascii("<m1@example.com>"));
}

TEST_F(Header, KeepsEncodedWordsInSubjectAndDecodesThemInSubjectDecoded) {
  const auto header = Build(kWholeHeader);
  EXPECT_EQ(Show(RecordOf(header).subject), Ascii("=?utf-8?Q?Caf=C3=A9?="));
  EXPECT_EQ(Show(RecordOf(header).subjectDecoded), Utf8("Caf\xC3\xA9"));
}

// An absent Content-Type or MIME-Version has the text that mimetic gives for it.
TEST_F(Header, OfAbsentFields) {
  const auto header = Build("X: y\n\n");
  const MimeHeaderClassData& record = RecordOf(header);
  EXPECT_EQ(Show(record.MimeVersion), Ascii("0.0"));
  EXPECT_EQ(Show(record.ContentType), Ascii("/"));
  EXPECT_EQ(Show(record.ContentTransferEncoding), "nil");
  EXPECT_EQ(Show(record.ContentTransferEncodingMechanism), "nil");
  EXPECT_EQ(Show(record.ContentDisposition), "nil");
  EXPECT_EQ(Show(record.ContentDescription), "nil");
  EXPECT_EQ(Show(record.subject), "nil");
  EXPECT_EQ(Show(record.subjectDecoded), "nil");
}

// mimetic makes up an id with the machine's name when there is none; the library does not.
TEST_F(Header, MakesUpNoContentIdAndNoMessageId) {
  const auto header = Build("X: y\n\n");
  EXPECT_EQ(Show(RecordOf(header).contentId), "nil");
  EXPECT_EQ(Show(RecordOf(header).messageid), "nil");
  const auto message = Parse("X: y\n\n");
  EXPECT_EQ(message->Header().Text(FieldName::kContentId), "");
  EXPECT_EQ(message->Header().Text(FieldName::kMessageId), "");
}

TEST_F(Header, FindsIdsWhateverTheirCase) {
  const auto header = Build("CONTENT-ID: <c>\nmessage-id: <m>\n\n");
  EXPECT_EQ(Show(RecordOf(header).contentId), Ascii("<c>"));
  EXPECT_EQ(Show(RecordOf(header).messageid), Ascii("<m>"));
}

std::vector<const host::ObjectSlot*> AddressSlots(const MimeHeaderClassData& record) {
  return {&record.sender, &record.from, &record.too, &record.replyto, &record.cc, &record.bcc};
}

TEST_F(Header, AddressObjectsAreNilWithoutTheirFields) {
  const auto header = Build(kWholeHeader);
  for (const host::ObjectSlot* slot : AddressSlots(RecordOf(header)))
    EXPECT_EQ(slot->get(), nullptr);
}

TEST_F(Header, AddressObjectsAreNilForFieldsThatNameNobody) {
  const auto header = Build("Sender: nobody\nFrom: \nTo:\nReply-To:  \nCc: \nBcc:\n\n");
  for (const host::ObjectSlot* slot : AddressSlots(RecordOf(header)))
    EXPECT_EQ(slot->get(), nullptr);
}

TEST_F(Header, SenderIsAMailbox) {
  const auto header = Build("Sender: A <a@example.com>\n\n");
  const auto* mailbox =
      host::RecordOf<objects::MimeMailboxClassData>(RecordOf(header).sender.get());
  ASSERT_NE(mailbox, nullptr);
  EXPECT_EQ(Show(mailbox->Label), Ascii("A"));
  EXPECT_EQ(Show(mailbox->Mailbox), Ascii("a"));
  EXPECT_EQ(Show(mailbox->Domain), Ascii("example.com"));
}

TEST_F(Header, FromIsAListOfMailboxes) {
  const auto header = Build("From: a@x, b@y\n\n");
  const auto* from = host::RecordOf<objects::MimeMailboxListClassData>(RecordOf(header).from.get());
  ASSERT_NE(from, nullptr);
  const auto mailboxes = RecordsIn<objects::MimeMailboxClassData>(from->mailboxes.get());
  ASSERT_EQ(mailboxes.size(), 2U);
  EXPECT_EQ(Show(mailboxes[1]->Domain), Ascii("y"));
}

TEST_F(Header, RecipientsAreListsOfAddresses) {
  const auto header = Build("Bcc: b@x\nCc: c@x\nReply-To: r@x\nTo: t@x\n\n");
  const MimeHeaderClassData& record = RecordOf(header);
  const auto text = [](const host::ObjectSlot& slot) {
    return Show(host::RecordOf<objects::MimeAddressListClassData>(slot.get())->StringValue);
  };
  EXPECT_EQ(text(record.too), Ascii("t@x"));
  EXPECT_EQ(text(record.replyto), Ascii("r@x"));
  EXPECT_EQ(text(record.cc), Ascii("c@x"));
  EXPECT_EQ(text(record.bcc), Ascii("b@x"));
}

TEST_F(Header, AddressObjectsAreNilWhenTheHostCannotMakeThem) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes = {"MimeMailboxZQV", "MimeMailboxListZQV", "MimeAddressListZQV"};
  StartObjects(capabilities);
  const auto header =
      Build("Sender: s@x\nFrom: f@x\nTo: t@x\nReply-To: r@x\nCc: c@x\nBcc: b@x\n\n");
  for (const host::ObjectSlot* slot : AddressSlots(RecordOf(header)))
    EXPECT_EQ(slot->get(), nullptr);
  EXPECT_EQ(Fields(header).size(), 6U);
}

TEST_F(Header, EmptyFieldsAreNil) {
  const auto header =
      Build("Subject:\nContent-Description: \nContent-Disposition:\nContent-ID:\nMessage-ID:\n\n");
  const MimeHeaderClassData& record = RecordOf(header);
  for (const host::StringSlot* slot :
       {&record.subject, &record.subjectDecoded, &record.ContentDescription,
        &record.ContentDisposition, &record.contentId, &record.messageid})
    EXPECT_EQ(Show(*slot), "nil");
}

TEST_F(Header, TextTakesItsEncodingFromItsBytesAndEndsAtANul) {
  const auto header =
      Build({"Subject: caf\xC3\xA9\nContent-Description: caf\xE9\nContent-ID: <a\0b>\n\n", 61});
  EXPECT_EQ(Show(RecordOf(header).subject), Utf8("caf\xC3\xA9"));
  EXPECT_EQ(Show(RecordOf(header).ContentDescription), MacRoman("caf\xE9"));
  EXPECT_EQ(Show(RecordOf(header).contentId), Ascii("<a"));
}

TEST_F(Header, ListsEveryFieldInTheOrderOfTheMessage) {
  const auto header = Build("B: 1\nA: 2\nReceived: 3\nb: 4\nA: \n\n");
  EXPECT_THAT(Fields(header), ElementsAre(Shown("B", "1"), Shown("A", "2"), Shown("Received", "3"),
                                          Shown("b", "4"), Ascii("A") + ": nil"));
}

// Fields that were parsed on demand are listed in their text form.
TEST_F(Header, ListsTheTextFormOfFieldsThatHaveOne) {
  const auto header =
      Build("Mime-Version: 1.0 (x)\nContent-Type: text/plain;charset=utf-8\nX-Raw: a;b=c\n\n");
  EXPECT_THAT(Fields(header), ElementsAre(Shown("Mime-Version", "1.0"),
                                          Shown("Content-Type", "text/plain; charset=\"utf-8\""),
                                          Shown("X-Raw", "a;b=c")));
}

TEST_F(Header, HasFieldIgnoresCase) {
  const auto header = Build("Subject: x\n\n");
  EXPECT_TRUE(Has(header, "Subject"));
  EXPECT_TRUE(Has(header, "SUBJECT"));
  EXPECT_FALSE(Has(header, "Subject:"));
  EXPECT_FALSE(Has(header, "Subjec"));
  EXPECT_FALSE(Has(header, ""));
}

TEST_F(Header, FieldByNameGivesTheFirstOfThatName) {
  const auto header = Build("A: 1\nB: 2\na: 3\nb: 4\n\n");
  EXPECT_EQ(Find(header, "a"), Ascii("1"));
  EXPECT_EQ(Find(header, "B"), Ascii("2"));
  EXPECT_EQ(Find(header, "C"), "none");
}

TEST_F(Header, FieldByNameGivesTheObjectOfTheListWithOneLockMore) {
  const auto header = Build("A: 1\n\n");
  const auto found = host::ObjectRef::Adopt(objects::FieldByName(header.get(), NewText("A").get()));
  const auto listed = host::ObjectRef::Adopt(objects::HeaderFields::At(header.get(), 0));
  EXPECT_EQ(found.get(), listed.get());
  EXPECT_EQ(LocksOf(found.get()), 3) << "held by the list and by the two references here";
}

TEST_F(Header, WithoutFieldsFindsNothing) {
  const auto header = Build("\nbody\n");
  EXPECT_THAT(Fields(header), IsEmpty());
  EXPECT_NE(RecordOf(header).fields.get(), nullptr);
  EXPECT_FALSE(Has(header, "A"));
  EXPECT_EQ(Find(header, "A"), "none");
}

TEST_F(Header, MadeByTheApplicationFindsNothing) {
  const auto header = host::NewInstance<MimeHeaderClassData>();
  objects::MimeHeaderConstructor(header.get());
  EXPECT_FALSE(Has(header, "A"));
  EXPECT_EQ(Find(header, "A"), "none");
  EXPECT_EQ(objects::HeaderFields::Whole(header.get()), nullptr);
  EXPECT_EQ(objects::hasField(nullptr, nullptr), 0);
  EXPECT_EQ(objects::FieldByName(nullptr, nullptr), nullptr);
}

// An application can put nil into the list, because the list is an ordinary array.
TEST_F(Header, PassesOverElementsThatAreNil) {
  const auto header = Build("A: 1\n\n");
  host::AppendObject(RecordOf(header).fields.get(), nullptr);
  const auto field = host::NewInstance<MimeFieldClassData>();
  objects::Set(*host::RecordOf<MimeFieldClassData>(field.get()), "B", "2");
  host::AppendObject(RecordOf(header).fields.get(), field.get());
  EXPECT_EQ(Find(header, "B"), Ascii("2"));
  EXPECT_EQ(Find(header, "C"), "none");
}

TEST_F(Header, FindsNothingWhenTheHostCannotCompare) {
  StartObjectsWithFault("RuntimeStringCompare");
  const auto header = Build("A: 1\n\n");
  EXPECT_FALSE(Has(header, "A"));
  EXPECT_EQ(Find(header, "A"), "none");
}

TEST_F(Header, FindRaisesWhatTheHostThrows) {
  StartObjectsWithFault("RuntimeStringCompare", {standin::Fault::Kind::kThrows});
  const auto header = Build("A: 1\n\n");
  EXPECT_FALSE(Has(header, "A"));
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of RuntimeStringCompare");
  EXPECT_EQ(Find(header, "A"), "none");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of RuntimeStringCompare");
}

TEST_F(Header, IsNilWhenTheHostCannotMakeOne) {
  StartObjectsWithoutClass("MimeHeaderZQV");
  EXPECT_FALSE(Build(kWholeHeader));
}

TEST_F(Header, SkipsFieldsThatTheHostCannotMake) {
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 3, 1});
  const auto header = Build("A: 1\nB: 2\nC: 3\n\n");
  EXPECT_THAT(Fields(header), ElementsAre(Shown("A", "1"), Shown("C", "3")));
}

TEST_F(Header, HasNoListWhenTheHostCannotMakeOne) {
  StartObjectsWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  const auto header = Build(kWholeHeader);
  EXPECT_EQ(RecordOf(header).fields.get(), nullptr);
  EXPECT_EQ(Show(RecordOf(header).subjectDecoded), Utf8("Caf\xC3\xA9"));
  EXPECT_FALSE(Has(header, "Subject"));
}

TEST_F(Header, KeepsWhatWasFilledWhenTheHostThrows) {
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kThrows, 3, 1});
  // The first instances are the header and its first field.
  const auto header = Build("Subject: x\nB: 2\nC: 3\n\n");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of PluginNewInstance");
  EXPECT_EQ(Show(RecordOf(header).subject), Ascii("x"));
  EXPECT_THAT(Fields(header), ElementsAre(Shown("Subject", "x")));
}

TEST_F(Header, LogsAnExceptionWithoutATypeName) {
  StartObjectsWithFault("PluginObjectArrayInsertProc", {standin::Fault::Kind::kThrowsInt});
  const LogCapture log;
  const auto header = Build("A: 1\n\n");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: Sorry, but there was an unnamed C++ Exception.");
  EXPECT_EQ(log.Text(), Logged({"Unnamed C++ Exception."}));
  EXPECT_THAT(Fields(header), IsEmpty());
}

TEST_F(Header, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  auto header = host::NewInstance<MimeHeaderClassData>();
  MimeHeaderClassData& record = RecordOf(header);
  std::vector<const void*> expected = {header.get()};
  const auto text = [&](host::StringSlot& slot) {
    slot.Put(NewText("x"));
    expected.push_back(slot.get());
  };
  const auto thing = [&](host::ObjectSlot& slot) {
    slot.Put(NewThing());
    expected.push_back(slot.get());
  };
  text(record.MimeVersion);
  text(record.ContentType);
  text(record.ContentTransferEncoding);
  text(record.ContentTransferEncodingMechanism);
  text(record.ContentDisposition);
  text(record.ContentDescription);
  text(record.contentId);
  thing(record.sender);
  thing(record.from);
  thing(record.too);
  text(record.subject);
  text(record.subjectDecoded);
  thing(record.replyto);
  thing(record.cc);
  thing(record.bcc);
  text(record.messageid);
  record.fields.Put(host::NewObjectArray());
  expected.push_back(record.fields.get());
  header = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeHeaderDestructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
