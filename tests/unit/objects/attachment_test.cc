#include "objects/attachment.h"

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

using objects::MimeAttachmentClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Bodies whose first bytes determine the type of the file.
const std::string kPng = "\x89PNG\r\n\x1A\n";
const std::string kOther = "something else";

// Tests with a message of one part, made of header lines and a body, that is not text.
class AttachmentTest : public EmailTest {
 protected:
  void TearDown() override {
    email_ = {};
    EmailTest::TearDown();
  }

  const MimeAttachmentClassData& Attach(const std::string& header, const std::string& body) {
    email_ = ParseEmail(Mixed({header + "\n" + body}));
    auto listed = Attachments(email_);
    const auto inlines = Inlines(email_);
    listed.insert(listed.end(), inlines.begin(), inlines.end());
    EXPECT_EQ(listed.size(), 1U);
    static const MimeAttachmentClassData kNone{};
    return listed.empty() ? kNone : *listed[0];
  }

  std::string NameOf(const std::string& header, const std::string& body = kOther) {
    return Show(Attach(header, body).Filename);
  }

  // The file name of a part whose parameter `filename*` has this value.
  std::string NameOfExtended(const std::string& value) {
    return NameOf("Content-Disposition: attachment; filename*=" + value + "\n");
  }

  host::ObjectRef email_;
};

class FileNamesOfParts : public AttachmentTest {};

// File names as host strings; email/file_name_test.cc tests the names themselves.
TEST_F(FileNamesOfParts, AreDecoded) {
  EXPECT_EQ(NameOf("Content-Disposition: attachment; filename=\"=?utf-8?Q?caf=C3=A9?=\"\n", kPng),
            Utf8("caf\xC3\xA9"));
}

TEST_F(FileNamesOfParts, ComeFromTheFirstParameterThatHasOne) {
  const std::string type = "Content-Type: image/png; name=4; filename=2\n";
  const std::string only_name = "Content-Type: image/png; name=3\n";
  const std::string disposition = "Content-Disposition: attachment; filename*=utf-8''4";
  EXPECT_EQ(NameOf(type + disposition + "; filename=1\n"), Ascii("1"));
  EXPECT_EQ(NameOf(type + disposition + "; filename=\"\"\n"), Ascii("2"));
  EXPECT_EQ(NameOf(only_name + disposition + "\n"), Ascii("3"));
  EXPECT_EQ(NameOf(disposition + "\n"), Utf8("4"));
  EXPECT_EQ(NameOf("Content-ID: <5>\nContent-Disposition: attachment; filename*=\"\"\n"),
            Ascii("5"));
}

TEST_F(FileNamesOfParts, InSingleByteCharsetsAreAsciiWhenTheyCanBe) {
  EXPECT_EQ(NameOfExtended("iso-8859-15''caf\xE9"), Shown(0x020F, "caf\xE9"));
  EXPECT_EQ(NameOfExtended("x-unknown''abc.txt"), Ascii("abc.txt"));
  EXPECT_EQ(NameOfExtended("0''ab"), Ascii("ab"));
}

TEST_F(FileNamesOfParts, ExtendedParameterOfAnUnknownCharsetIsTakenWhole) {
  EXPECT_EQ(NameOfExtended("no-such''abc.txt"), Ascii("no-such''abc.txt"));
  objects::setRaiseUnknownFormatExceptions(1);
  EXPECT_EQ(NameOfExtended("no-such''abc.txt"), Ascii("no-such''abc.txt"));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: no-such");
}

TEST_F(FileNamesOfParts, AreMadeUpFromTheDecodedData) {
  EXPECT_EQ(NameOf("Content-Type: image/gif\nContent-Transfer-Encoding: base64\n", "R0lGODlh"),
            Ascii("attachment.gif"));
  EXPECT_EQ(NameOf("Content-Type: image/x\nContent-ID: <caf\xE9>\n"), MacRoman("caf\xE9"));
}

class AttachmentRecord : public AttachmentTest {};

TEST_F(AttachmentRecord, HoldsTheFieldsAsText) {
  const auto& record = Attach(
      "MIME-Version: 1.0\nContent-Type: image/png; name=a.png\nContent-Transfer-Encoding: Base64\n"
      "Content-Disposition: attachment; size=3\nContent-Description: a picture  \n"
      "Content-ID: <p@example.com>\n",
      "QUJD");
  EXPECT_EQ(Show(record.Data), Ascii("ABC"));
  EXPECT_EQ(Show(record.Filename), Ascii("a.png"));
  EXPECT_EQ(Show(record.MimeType), Ascii("image/png"));
  EXPECT_EQ(Show(record.MimeVersion), Ascii("1.0"));
  EXPECT_EQ(Show(record.ContentType), Ascii("image/png; name=\"a.png\""));
  EXPECT_EQ(Show(record.ContentTransferEncoding), Ascii("Base64"));
  EXPECT_EQ(Show(record.ContentDisposition), Ascii("attachment; size=\"3\""));
  EXPECT_EQ(Show(record.ContentDescription), Ascii("a picture  "));
  EXPECT_EQ(Show(record.contentId), Ascii("<p@example.com>"));
}

TEST_F(AttachmentRecord, OfAbsentFields) {
  const auto& record = Attach("X: y\n", "x");
  EXPECT_EQ(Show(record.MimeType), "nil");
  EXPECT_EQ(Show(record.MimeVersion), Ascii("0.0"));
  EXPECT_EQ(Show(record.ContentType), Ascii("/"));
  EXPECT_EQ(Show(record.ContentTransferEncoding), "nil");
  EXPECT_EQ(Show(record.ContentDisposition), "nil");
  EXPECT_EQ(Show(record.ContentDescription), "nil");
  EXPECT_EQ(Show(record.contentId), "nil");
}

TEST_F(AttachmentRecord, TextLosesLeadingBlanks) {
  EXPECT_EQ(Show(Attach("Content-Description:\n\t folded\n", "x").ContentDescription),
            Ascii("folded"));
  EXPECT_EQ(Show(Attach("Content-Description:\n  \n", "x").ContentDescription), "nil");
  EXPECT_EQ(Show(Attach("Content-Description: caf\xE9\n", "x").ContentDescription),
            MacRoman("caf\xE9"));
}

TEST_F(AttachmentRecord, MimeTypeIsWhatThereIsOfTypeAndSubtype) {
  EXPECT_EQ(Show(Attach("Content-Type: Image/PNG\n", "x").MimeType), Ascii("Image/PNG"));
  EXPECT_EQ(Show(Attach("Content-Type: image\n", "x").MimeType), Ascii("image"));
  EXPECT_EQ(Show(Attach("Content-Type: image/\n", "x").MimeType), Ascii("image"));
  EXPECT_EQ(Show(Attach("Content-Type: /png\n", "x").MimeType), Ascii("png"));
}

TEST_F(AttachmentRecord, SharesBodyHeaderAndDataWithItsPart) {
  const auto& record = Attach("Content-Type: image/x\n", "data");
  const auto& part = *Parts(RecordOf(email_))[0];
  EXPECT_EQ(record.Body.get(), part.Body.get());
  EXPECT_EQ(record.Header.get(), part.Header.get());
  EXPECT_EQ(record.Data.get(), part.BodyDecoded.get());
  EXPECT_EQ(LocksOf(record.Body.get()), 2);
  EXPECT_EQ(LocksOf(record.Header.get()), 2);
  EXPECT_EQ(LocksOf(record.Data.get()), 2);
}

TEST_F(AttachmentRecord, OutlivesTheMessage) {
  const auto& record = Attach("Content-Type: image/x\n", "data");
  const auto attachment = host::ObjectRef::Adopt(
      host::REALGetArrayObject(RecordOf(email_).Attachments.get(), 0).Detach());
  email_ = {};
  EXPECT_EQ(Show(record.Data), Ascii("data"));
  EXPECT_EQ(LocksOf(record.Body.get()), 1);
}

TEST_F(AttachmentRecord, OfASecondPlainTextHoldsItsText) {
  const auto email = ParseEmail(
      Mixed({"Content-Type: text/plain\n\nfirst", "Content-Type: text/plain\n\nsecond"}));
  ASSERT_EQ(Attachments(email).size(), 1U);
  EXPECT_EQ(Show(Attachments(email)[0]->Data), Ascii("second"));
}

// Adds a part with one header line to the list. The part's entity holds no objects.
void AddEmptyPart(objects::ArraySlot& list) {
  const objects::MimeEntityClassData entity{};
  const auto message = Parse("X: y\n\n");
  objects::AddAttachment(list, {entity, message->Header(), ""});
}

TEST_F(AttachmentRecord, HoldsNilForWhatIsNil) {
  const auto email = NewEmail();
  AddEmptyPart(RecordOf(email).Inlines);
  ASSERT_EQ(Inlines(email).size(), 1U);
  EXPECT_EQ(Inlines(email)[0]->Body.get(), nullptr);
  EXPECT_EQ(Inlines(email)[0]->Header.get(), nullptr);
  EXPECT_EQ(Show(Inlines(email)[0]->Data), "nil");
}

TEST_F(AttachmentRecord, MakesTheListThatIsMissing) {
  const auto email = NewEmail();
  AddEmptyPart(RecordOf(email).Attachments);
  EXPECT_EQ(Attachments(email).size(), 1U);
  EXPECT_EQ(RecordOf(email).Inlines.get(), nullptr);
  AddEmptyPart(RecordOf(email).Attachments);
  AddEmptyPart(RecordOf(email).Inlines);
  EXPECT_EQ(Attachments(email).size(), 2U);
  EXPECT_EQ(Inlines(email).size(), 1U);
}

TEST_F(AttachmentRecord, IsNotListedWhenTheHostCannotMakeIt) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert("MimeAttachmentZQV");
  StartEmail(capabilities);
  email_ = ParseEmail(Mixed({"Content-Type: image/x\n\nx"}));
  EXPECT_THAT(Attachments(email_), IsEmpty());
  EXPECT_EQ(Parts(RecordOf(email_)).size(), 1U);
}

TEST_F(AttachmentRecord, IsNotListedWhenTheHostCannotMakeAList) {
  StartEmailWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  email_ = ParseEmail(Mixed({"Content-Type: image/x\n\nx"}));
  EXPECT_EQ(RecordOf(email_).Attachments.get(), nullptr);
  EXPECT_EQ(host().ledger().Live().arrays, 0);
}

TEST_F(AttachmentRecord, IsNotListedWhenTheHostCannotInsert) {
  StartEmailWithFault("PluginObjectArrayInsertProc");
  email_ = ParseEmail(Mixed({"Content-Type: image/x\n\nx"}));
  EXPECT_THAT(Attachments(email_), IsEmpty());
}

// When the host throws while an attachment is made, that attachment is freed, and earlier ones
// stay.
TEST_F(AttachmentRecord, IsGivenBackWhenTheHostThrows) {
  const auto email = NewEmail();
  host().SetFault("PluginObjectArrayInsertProc", standin::Fault{standin::Fault::Kind::kThrows});
  EXPECT_THROW(AddEmptyPart(RecordOf(email).Inlines), std::runtime_error);
  EXPECT_EQ(host().ledger().Live().objects, 1) << "the message";
}

TEST_F(AttachmentRecord, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  auto attachment = host::NewInstance<MimeAttachmentClassData>();
  auto& record = *host::RecordOf<MimeAttachmentClassData>(attachment.get());
  std::vector<const void*> expected = {attachment.get()};
  for (host::ObjectSlot* slot : {&record.Body, &record.Header}) {
    slot->Put(NewThing());
    expected.push_back(slot->get());
  }
  for (host::StringSlot* slot :
       {&record.Data, &record.Filename, &record.MimeType, &record.MimeVersion, &record.ContentType,
        &record.ContentTransferEncoding, &record.ContentDisposition, &record.ContentDescription,
        &record.contentId}) {
    slot->Put(NewText("x"));
    expected.push_back(slot->get());
  }
  attachment = {};
  EXPECT_EQ(Unlocked(), expected);
}

TEST_F(AttachmentRecord, MadeByTheApplicationIsEmpty) {
  RecordUnlocks();
  auto attachment = host::NewInstance<MimeAttachmentClassData>();
  objects::MimeAttachmentConstructor(attachment.get());
  const std::vector<const void*> expected = {attachment.get()};
  attachment = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::Destructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
