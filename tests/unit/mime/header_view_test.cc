#include "mime/header_view.h"

#include <gtest/gtest.h>
#include <mimetic/mimetic.h>

#include <set>
#include <string>

#include "mime/parser.h"

namespace zqv::test {
namespace {

using mime::FieldName;

// RFC 5322, section 3.6, and RFC 2045, section 3.
struct NameRow {
  const char* text;
  FieldName name;
};
constexpr NameRow kRows[] = {
    {"Bcc", FieldName::kBcc},
    {"Cc", FieldName::kCc},
    {"Content-Description", FieldName::kContentDescription},
    {"Content-Disposition", FieldName::kContentDisposition},
    {"Content-ID", FieldName::kContentId},
    {"Content-Transfer-Encoding", FieldName::kContentTransferEncoding},
    {"Content-Type", FieldName::kContentType},
    {"Date", FieldName::kDate},
    {"From", FieldName::kFrom},
    {"Message-ID", FieldName::kMessageId},
    {"MIME-Version", FieldName::kMimeVersion},
    {"Received", FieldName::kReceived},
    {"Reply-To", FieldName::kReplyTo},
    {"Sender", FieldName::kSender},
    {"Subject", FieldName::kSubject},
    {"To", FieldName::kTo},
};

TEST(FieldName, IsRecognisedInAnyCase) {
  for (const NameRow& row : kRows) {
    std::string name = row.text;
    EXPECT_EQ(mime::RecogniseFieldName(name), row.name) << name;
    for (char& c : name) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    EXPECT_EQ(mime::RecogniseFieldName(name), row.name) << name;
  }
}

TEST(FieldName, IsNothingElse) {
  for (const NameRow& row : kRows) {
    const std::string name = row.text;
    for (const std::string& other : {name + "s", name + " ", " " + name, "x" + name.substr(1)}) {
      EXPECT_EQ(mime::RecogniseFieldName(other), std::nullopt) << other;
    }
  }
  EXPECT_EQ(mime::RecogniseFieldName(""), std::nullopt);
  EXPECT_EQ(mime::RecogniseFieldName(std::string(26, 'x')), std::nullopt);
  EXPECT_EQ(mime::RecogniseFieldName(std::string(100000, 'x')), std::nullopt);
}

TEST(HeaderView, HasWhatTheHeaderHas) {
  for (const NameRow& row : kRows) {
    mimetic::MimeEntity entity;
    mime::ParseMessage("X: y\n" + std::string(row.text) + ": z\nX: y\n\n", entity);
    const mime::HeaderView view(entity.header());
    for (const NameRow& other : kRows) EXPECT_EQ(view.Has(other.name), other.name == row.name);
  }
}

// As the library answers for a header without any field, but for the ids, which it makes up.
TEST(HeaderView, GivesTheLibrarysAnswersForAbsentFields) {
  const mimetic::Header none;
  const mime::HeaderView view(none);
  EXPECT_EQ(view.mime_version().str(), "0.0");
  EXPECT_EQ(view.content_type().str(), "/");
  EXPECT_EQ(view.content_transfer_encoding().str(), "");
  EXPECT_EQ(view.content_disposition().str(), "");
  EXPECT_EQ(view.content_description().str(), "");
  EXPECT_EQ(view.sender().str(), "@");
  EXPECT_TRUE(view.from().empty());
  for (const auto* list : {&view.to(), &view.reply_to(), &view.cc(), &view.bcc()}) {
    EXPECT_TRUE(list->empty());
  }
  EXPECT_EQ(view.content_id(), "");
  EXPECT_EQ(view.message_id(), "");
  EXPECT_EQ(view.subject(), "");
}

TEST(HeaderView, GivesTheFirstFieldOfAName) {
  mimetic::MimeEntity entity;
  mime::ParseMessage(
      "Subject: a\nSUBJECT: b\nTo: a@b\nTo: c@d\nContent-Type: text/plain\nContent-Type: a/b\n"
      "MIME-Version: 1.0\nContent-ID: <i>\nMessage-ID: <m>\nFrom: f@g, h@i\nSender: s@t\n\n",
      entity);
  const mime::HeaderView view(entity.header());
  EXPECT_EQ(view.subject(), "a");
  EXPECT_EQ(view.to().str(), "a@b");
  EXPECT_EQ(view.content_type().str(), "text/plain");
  EXPECT_EQ(view.mime_version().str(), "1.0");
  EXPECT_EQ(view.content_id(), "<i>");
  EXPECT_EQ(view.message_id(), "<m>");
  EXPECT_EQ(view.from().size(), 2U);
  EXPECT_EQ(view.sender().mailbox(1), "s");
  std::string storage;
  EXPECT_EQ(view.size(), 11U);
  EXPECT_EQ(view.Name(1), "SUBJECT");
  EXPECT_EQ(view.Value(1, storage), "b");
}

}  // namespace
}  // namespace zqv::test
