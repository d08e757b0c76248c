#include "mime/header.h"

#include <gtest/gtest.h>
#include <mimetic/mimetic.h>

#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "mime/message.h"

namespace zqv::test {
namespace {

using mime::FieldName;

TEST(Header, HasTheValuesOfItsFields) {
  for (const mime::FieldNameRow& row : mime::kFieldNameRows) {
    const std::string text = "X: y\n" + std::string(row.text) + ": z\nX: y\n\n";
    const mime::Message message(text);
    const mime::Header header = message.HeaderOf(message.top());
    for (const mime::FieldNameRow& other : mime::kFieldNameRows)
      EXPECT_EQ(header.Has(other.name), other.name == row.name);
  }
}

// The values of a header without fields equal mimetic's. Ids are not compared, because mimetic
// makes them up.
TEST(Header, GivesMimeticsAnswersForAbsentFields) {
  const mime::Header header(nullptr, 0);
  EXPECT_EQ(header.content_type().Text(), "/");
  EXPECT_EQ(header.content_disposition().Text(), "");
  EXPECT_EQ(header.sender().text, "@");
  EXPECT_TRUE(header.from().empty());
  for (const auto* parsed : {&header.to(), &header.reply_to(), &header.cc(), &header.bcc()}) {
    EXPECT_TRUE(parsed->empty());
  }
  for (const mime::FieldNameRow& row : mime::kFieldNameRows) {
    const std::string_view expected = row.name == FieldName::kMimeVersion   ? "0.0"
                                      : row.name == FieldName::kContentType ? "/"
                                      : row.name == FieldName::kSender      ? "@"
                                                                            : "";
    EXPECT_EQ(header.Text(row.name), expected) << row.text;
  }
}

TEST(Header, GivesTheFirstFieldOfAName) {
  const mime::Message message(
      "Subject: a\nSUBJECT: b\nTo: a@b\nTo: c@d\nContent-Type: text/plain\nContent-Type: a/b\n"
      "MIME-Version: 1.0\nContent-ID: <i>\nMessage-ID: <m>\nFrom: f@g,h@i\nSender: s@t\n\n");
  const mime::Header header = message.HeaderOf(message.top());
  EXPECT_EQ(header.Text(FieldName::kSubject), "a");
  EXPECT_EQ(header.Text(FieldName::kTo), "a@b");
  EXPECT_EQ(header.content_type().Text(), "text/plain");
  EXPECT_EQ(header.Text(FieldName::kMimeVersion), "1.0");
  EXPECT_EQ(header.Text(FieldName::kContentId), "<i>");
  EXPECT_EQ(header.Text(FieldName::kMessageId), "<m>");
  EXPECT_EQ(header.from().size(), 2U);
  EXPECT_EQ(header.from().text(), "f@g, h@i");
  EXPECT_EQ(header.from()[0].text, "f@g");
  EXPECT_EQ(header.from()[1].text, "h@i");
  EXPECT_EQ(header.sender().local_part, "s");
  EXPECT_EQ(header.size(), 11U);
  EXPECT_EQ(header[1].name, "SUBJECT");
  EXPECT_EQ(header.Value(1), "b");
}

// The text that mimetic writes for a value of the type that a field name has.
std::string FormOf(FieldName name, const std::string& value) {
  switch (name) {
    case FieldName::kMimeVersion:
      return mimetic::MimeVersion(value).str();
    case FieldName::kContentType:
      return mimetic::ContentType(value).str();
    case FieldName::kContentTransferEncoding:
      return mimetic::ContentTransferEncoding(value).str();
    case FieldName::kContentDisposition:
      return mimetic::ContentDisposition(value).str();
    case FieldName::kContentDescription:
      return mimetic::ContentDescription(value).str();
    case FieldName::kContentId:
      return mimetic::ContentId(value).str();
    case FieldName::kMessageId:
      return mimetic::MessageId(value).str();
    case FieldName::kSender:
      return mimetic::Mailbox(value).str();
    case FieldName::kFrom:
      return mimetic::MailboxList(value).str();
    case FieldName::kTo:
    case FieldName::kReplyTo:
    case FieldName::kCc:
    case FieldName::kBcc:
      return mimetic::AddressList(value).str();
    default:
      return value;
  }
}

// Pieces of field values. Many random combinations of them are valid values.
constexpr const char* kPieces[] = {
    "text",    "/",   "html",  ";",      " ",          "charset",   "=",
    "\"",      "a@b", "<c@d>", ",",      "Label ",     ":",         "(comment)",
    "1",       ".",   "0",     "base64", "attachment", "filename*", "=?utf-8?Q?x?=",
    "\xC3\xA9"};

std::string MakeValue(std::mt19937& random) {
  std::string value = "v";  // a blank at the start would not be part of the value
  for (unsigned left = random() % 8; left > 0; --left) {
    value += kPieces[random() % std::size(kPieces)];
  }
  return value;
}

// Each of these types has a text form, which equals mimetic's. The first field of a name gives its
// text form; later fields of that name, and unknown fields, give the value as written.
TEST(Header, GivesMimeticsTextForms) {
  std::mt19937 random(1);
  for (const mime::FieldNameRow& row : mime::kFieldNameRows) {
    for (int round = 0; round < 500; ++round) {
      const std::string value = MakeValue(random);
      const std::string name(row.text);
      const std::string text =
          "X-A: " + value + "\n" + name + ": " + value + "\n" + name + ": " + value + "\n\n";
      const mime::Message message(text);
      const mime::Header header = message.HeaderOf(message.top());
      ASSERT_EQ(header.size(), 3U);
      ASSERT_EQ(header.Value(0), value);
      ASSERT_EQ(header.Value(1), FormOf(row.name, value)) << name << ": " << value;
      ASSERT_EQ(header.Text(row.name), header.Value(1)) << name << ": " << value;
      ASSERT_EQ(header.Value(2), value) << name;
    }
  }
}

TEST(Header, FindsTheFieldThatCounts) {
  const std::string text = "Subject: a\nsubject: b\nX: c\n\n";
  const mime::Message message(text);
  const mime::Header header = message.HeaderOf(message.top());
  EXPECT_EQ(header.Find(FieldName::kSubject), &header[0]);
  EXPECT_EQ(header.Find(FieldName::kTo), nullptr);
}

}  // namespace
}  // namespace zqv::test
