// The tree of a message as applications read it: entities, bodies, headers and fields.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

using ::testing::ElementsAre;

class Tree : public InterfaceTest {};

Object HeaderOf(const std::string& fields) {
  return ObjectOf(Get(Parse(fields + "\nText\n"), "Header"));
}

Object BodyOf(const Object& entity) { return ObjectOf(Get(entity, "Body")); }
Object Part(const Object& entity, int index) {
  return ObjectOf(Call(BodyOf(entity), "Parts", index));
}

bool IsNilMember(const Object& object, std::string_view property) {
  return standin::IsNil(Get(object, property));
}

Object FieldNamed(const Object& header, std::string_view name) {
  return ObjectOf(Call(header, "FieldByName", MakeString(name)));
}
bool HasField(const Object& header, std::string_view name) {
  return std::get<bool>(Call(header, "hasField", MakeString(name)));
}

// Each field in order as "Name: Value"; a nil value is "nil".
std::vector<std::string> FieldsOf(const Object& header) {
  std::vector<std::string> fields;
  const Object array = ObjectOf(Call(header, "Fields as MimeFieldZQV()"));
  for (std::int64_t i = 0; i < array.Size(); ++i) {
    const Object field = ObjectOf(array.At(i));
    const Value value = Get(field, "Value");
    fields.push_back(standin::BytesOf(Get(field, "Name")) + ": " +
                     (standin::IsNil(value) ? "nil" : standin::BytesOf(value)));
  }
  return fields;
}

TEST_F(Tree, AbsentAddressFieldsAreNil) {
  Start();
  const Object header = HeaderOf("Subject: Hi\n");
  for (const char* name : {"sender", "from", "too", "replyto", "cc", "bcc"}) {
    EXPECT_TRUE(IsNilMember(header, name)) << name;
  }
}

TEST_F(Tree, EmptyAddressFieldsAreNil) {
  Start();
  const Object header = HeaderOf("To:\nCc: \nFrom:\nSender: nobody\nX: y\n");
  for (const char* name : {"sender", "from", "too", "cc"}) {
    EXPECT_TRUE(IsNilMember(header, name)) << name;
  }
}

TEST_F(Tree, PresentAddressFieldsAreObjects) {
  Start();
  const Object header = ObjectOf(Get(Parse(RichMessage()), "Header"));
  const auto text = [&](const char* name) {
    return standin::BytesOf(Get(ObjectOf(Get(header, name)), "StringValue"));
  };
  EXPECT_EQ(text("replyto"), "list@example.org");
  EXPECT_EQ(text("bcc"), "eve@example.org");
  EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "from")), "Count")), 2);
  EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "too")), "Count")), 2);
  const Object sender = ObjectOf(Get(header, "sender"));
  EXPECT_EQ(ShowProperty(sender, "LabelDecoded"), "0x201 Ren\xE9");
  EXPECT_EQ(ShowProperty(sender, "Email"), "0x600 rene@example.org");
}

// The library does not make up an id, which would contain the machine's name.
TEST_F(Tree, AbsentIdsAreNil) {
  Start();
  const Object message = Parse("Content-Type: image/png\n\nX\n");
  const Object header = ObjectOf(Get(message, "Header"));
  EXPECT_TRUE(IsNilMember(header, "contentId"));
  EXPECT_TRUE(IsNilMember(header, "messageid"));
  const Object attachment = ObjectOf(Call(message, "Attachments", 0));
  EXPECT_TRUE(IsNilMember(attachment, "contentId"));
}

TEST_F(Tree, PresentIdsKeepTheirBrackets) {
  Start();
  const Object header = HeaderOf("Message-ID: <m@example.org>\nContent-ID: <c@example.org>\n");
  EXPECT_EQ(ShowProperty(header, "messageid"), "0x600 <m@example.org>");
  EXPECT_EQ(ShowProperty(header, "contentId"), "0x600 <c@example.org>");
}

TEST_F(Tree, HeaderTexts) {
  Start();
  const Object header = HeaderOf(
      "MIME-Version: 1.0\nContent-Type: Text/Plain;charset=utf-8\n"
      "Content-Transfer-Encoding: 8BIT\nContent-Disposition: inline;filename=a.txt\n"
      "Content-Description: A text\n");
  EXPECT_EQ(ShowProperty(header, "MimeVersion"), "0x600 1.0");
  EXPECT_EQ(ShowProperty(header, "ContentType"), "0x600 Text/Plain; charset=\"utf-8\"");
  EXPECT_EQ(ShowProperty(header, "ContentTransferEncoding"), "0x600 8BIT");
  EXPECT_EQ(ShowProperty(header, "ContentTransferEncodingMechanism"), "0x600 8BIT");
  EXPECT_EQ(ShowProperty(header, "ContentDisposition"), "0x600 inline; filename=\"a.txt\"");
  EXPECT_EQ(ShowProperty(header, "ContentDescription"), "0x600 A text");
}

TEST_F(Tree, SubjectIsKeptAndDecoded) {
  Start();
  const Object message = Parse("Subject: =?utf-8?Q?Caf=C3=A9?=\n\nText\n");
  const Object header = ObjectOf(Get(message, "Header"));
  EXPECT_EQ(ShowProperty(header, "subject"), "0x600 =?utf-8?Q?Caf=C3=A9?=");
  EXPECT_EQ(ShowProperty(header, "subjectDecoded"), "0x8000100 Caf\xC3\xA9");
  EXPECT_EQ(ShowProperty(message, "Subject"), "0x8000100 Caf\xC3\xA9");
}

TEST_F(Tree, FieldsComeInOrderWithNamesAsWritten) {
  Start();
  const Object header =
      HeaderOf("X-b: 1\nx-A: 2\nReceived: from a\n  by b\nX-b: 3\nX-Empty:\nX-Z: 4\n");
  EXPECT_THAT(FieldsOf(header), ElementsAre("X-b: 1", "x-A: 2", "Received: from a by b", "X-b: 3",
                                            "X-Empty: nil", "X-Z: 4"));
  EXPECT_EQ(ShowProperty(ObjectOf(Call(header, "Fields", 1)), "Name"), "0x600 x-A");
}

TEST_F(Tree, FieldTextsAreLabelledByTheirBytes) {
  Start();
  const std::string nul("a\0b", 3);
  const Object header = HeaderOf("X-Utf: caf\xC3\xA9\nX-Other: caf\x8E\nX-Nul: " + nul +
                                 "\nX-Low: cafe\nX-Mixed: \xC3\xA9 \xFF\n");
  const auto value = [&](const char* name) {
    return ShowProperty(FieldNamed(header, name), "Value");
  };
  EXPECT_EQ(value("X-Utf"), "0x8000100 caf\xC3\xA9");
  EXPECT_EQ(value("X-Other"), "0x0 caf\x8E");
  EXPECT_EQ(value("X-Nul"), "0x600 a");
  EXPECT_EQ(value("X-Low"), "0x600 cafe");
  EXPECT_EQ(value("X-Mixed"), "0x0 \xC3\xA9 \xFF");
}

TEST_F(Tree, FieldsAreFoundAsTheHostComparesTexts) {
  Start();
  const Object header = HeaderOf("X-Twice: first\nSubject: Hi\nx-twice: second\n");
  EXPECT_TRUE(HasField(header, "Subject"));
  EXPECT_TRUE(HasField(header, "SUBJECT"));
  EXPECT_FALSE(HasField(header, "Subjec"));
  EXPECT_FALSE(HasField(header, "Subject "));
  EXPECT_FALSE(HasField(header, ""));
  EXPECT_EQ(ShowProperty(FieldNamed(header, "x-TWICE"), "Value"), "0x600 first");
  EXPECT_TRUE(FieldNamed(header, "Nobody").IsNil());
  EXPECT_TRUE(FieldNamed(header, "X-Twice") == ObjectOf(Call(header, "Fields", 0)));
}

TEST_F(Tree, HeaderWithoutFieldsHasAnEmptyList) {
  Start();
  const Object header = ObjectOf(Get(Parse("\nText\n"), "Header"));
  EXPECT_EQ(ObjectOf(Call(header, "Fields as MimeFieldZQV()")).Size(), 0);
  EXPECT_FALSE(HasField(header, "Subject"));
  EXPECT_TRUE(FieldNamed(header, "Subject").IsNil());
  EXPECT_NE(RaisedBy([&] { Call(header, "Fields", 0); }), "");
}

TEST_F(Tree, SinglePartHasAnEmptyListOfParts) {
  Start();
  const Object body = BodyOf(Parse(PlainMessage()));
  const Object parts = ObjectOf(Call(body, "Parts as MimeEntityZQV()"));
  ASSERT_FALSE(parts.IsNil());
  EXPECT_EQ(parts.Size(), 0);
  EXPECT_EQ(RaisedBy([&] { Call(body, "Parts", 0); }).substr(0, 20), "OutOfBoundsException");
  EXPECT_TRUE(IsNilMember(body, "preamble"));
  EXPECT_TRUE(IsNilMember(body, "epilogue"));
}

TEST_F(Tree, BodyTextIsUndecoded) {
  Start();
  const Object message =
      Parse("Content-Type: text/plain\nContent-Transfer-Encoding: base64\n\nSGVsbG8=\n");
  EXPECT_EQ(ShowProperty(BodyOf(message), "StringValue"), "0x600 SGVsbG8=\n");
  EXPECT_EQ(ShowProperty(message, "BodyDecoded"), "0x600 Hello");
}

TEST_F(Tree, HasTheDepthOfTheNesting) {
  Start();
  const Object message = Parse(RichMessage());
  const Object alternative = Part(Part(message, 0), 0);
  EXPECT_EQ(ShowProperty(Part(alternative, 0), "BodyDecoded"), "0x201 Caf\xE9 at noon");
  EXPECT_EQ(ShowProperty(Part(alternative, 1), "BodyDecoded"),
            "0x8000100 <p>Caf\xC3\xA9 &amp; cake</p>");
  EXPECT_TRUE(IsNilMember(alternative, "BodyDecoded"));
  EXPECT_EQ(ShowProperty(Part(Part(message, 2), 0), "BodyDecoded"), "0xffff Caf\xE9 again");
  EXPECT_EQ(standin::BytesOf(Get(BodyOf(message), "epilogue")), "What stands after them.\n");
  EXPECT_EQ(ObjectOf(Call(BodyOf(Part(message, 1)), "Parts as MimeEntityZQV()")).Size(), 0);
}

TEST_F(Tree, InnerAttachmentsComeBeforeLaterOuterOnes) {
  Start();
  const Object message = Parse(
      "Content-Type: multipart/mixed; boundary=o\n\n"
      "--o\nContent-Type: multipart/mixed; boundary=i\n\n"
      "--i\nContent-Type: application/a\n\nA\n--i\nContent-Type: application/b\n\nB\n--i--\n"
      "--o\nContent-Type: application/c\n\nC\n--o--\n");
  const Object list = ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()"));
  std::vector<std::string> types;
  for (std::int64_t i = 0; i < list.Size(); ++i) {
    types.push_back(standin::BytesOf(Get(ObjectOf(list.At(i)), "MimeType")));
  }
  EXPECT_THAT(types, ElementsAre("application/a", "application/b", "application/c"));
}

TEST_F(Tree, PartsHaveOnlyTheirOwnMembers) {
  Start();
  const Object part = Part(Parse(RichMessage()), 1);
  EXPECT_EQ(part.ClassName(), "MimeEntityZQV");
  EXPECT_FALSE(IsNilMember(part, "Header"));
  EXPECT_FALSE(IsNilMember(part, "Body"));
}

TEST_F(Tree, FieldFromText) {
  Start();
  const struct {
    std::string text;
    const char* name;
    const char* value;
  } kRows[] = {
      {"Subject: Hi there", "0x600 Subject", "0x600 Hi there"},
      {"X:y", "0x600 X", "0x600 y"},
      {"A : b", "0x600 A ", "0x600 b"},
      {"X:   a:b", "0x600 X", "0x600 a:b"},
      {"no colon", "nil", "nil"},
      {"", "nil", "nil"},
      {"X: caf\xC3\xA9", "0x600 X", "0x8000100 caf\xC3\xA9"},
      {std::string("X: a\0b", 6), "0x600 X", "0x600 a"},
  };
  for (const auto& row : kRows) {
    const Object field = FromText("MimeFieldZQV", row.text);
    EXPECT_EQ(ShowProperty(field, "Name"), row.name) << row.text;
    EXPECT_EQ(ShowProperty(field, "Value"), row.value) << row.text;
  }
}

// The text is converted to UTF-8 from any encoding.
TEST_F(Tree, FieldFromTextInOtherEncodings) {
  Start();
  const auto value = [](const String& text) {
    return ShowProperty(standin::Construct("MimeFieldZQV", "Constructor", text), "Value");
  };
  EXPECT_EQ(value(MakeString("X: caf\x8E", abi::kMacRoman)), "0x8000100 caf\xC3\xA9");
  EXPECT_EQ(value(MakeString("X: caf\xE9", abi::kIsoLatin1)), "0x8000100 caf\xC3\xA9");
  EXPECT_EQ(value(MakeString(std::string("X\0:\0\xE9\0", 6), abi::kUtf16LittleEndian)),
            "0x8000100 \xC3\xA9");
  EXPECT_EQ(value(MakeString("X: caf\x8E", abi::kUnknownEncoding)), "0x8000100 caf\xC3\xA9")
      << "bytes without an encoding are read as Mac Roman";
}

}  // namespace
}  // namespace zqv::interface_test
