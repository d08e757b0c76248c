#include "mime/field_name.h"

#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <set>
#include <string>

namespace zqv::test {
namespace {

using mime::FieldName;

// The names of RFC 5322, section 3.6, and RFC 2045, section 3, by hand. A name that is added to the
// table need not be here: a message of tests/corpus has the field.
constexpr mime::FieldNameRow kRows[] = {
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
static_assert(std::size(kRows) <= mime::kFieldNames);

void ExpectRecognised(const mime::FieldNameRow& row) {
  std::string name(row.text);
  EXPECT_EQ(mime::RecogniseFieldName(name), row.name) << name;
  for (char& c : name) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  EXPECT_EQ(mime::RecogniseFieldName(name), row.name) << name;
}

TEST(FieldName, IsRecognisedInAnyCase) {
  for (const mime::FieldNameRow& row : kRows) ExpectRecognised(row);
}

TEST(FieldName, EachOfTheTableIsRecognised) {
  std::set<FieldName> names;
  for (const mime::FieldNameRow& row : mime::kFieldNameRows) {
    ExpectRecognised(row);
    EXPECT_TRUE(names.insert(row.name).second) << row.text;
  }
}

TEST(FieldName, RejectsOtherTexts) {
  for (const mime::FieldNameRow& row : mime::kFieldNameRows) {
    const std::string name(row.text);
    for (const std::string& other : {name + "s", name + " ", " " + name, "x" + name.substr(1)}) {
      EXPECT_EQ(mime::RecogniseFieldName(other), std::nullopt) << other;
    }
  }
  EXPECT_EQ(mime::RecogniseFieldName(""), std::nullopt);
  EXPECT_EQ(mime::RecogniseFieldName(std::string(26, 'x')), std::nullopt);
  EXPECT_EQ(mime::RecogniseFieldName(std::string(100000, 'x')), std::nullopt);
}

}  // namespace
}  // namespace zqv::test
