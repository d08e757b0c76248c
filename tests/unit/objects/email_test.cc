#include "objects/email.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/strings.h"
#include "standin/application.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/mime/nested_message.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

// The registered constructors of MimeEmailZQV. They get the bytes; build_test.cc tests what is made
// of them.
class EmailConstructor : public EmailTest {};

TEST_F(EmailConstructor, FromAStringParsesItsOwnBytes) {
  const auto email = NewEmail();
  const auto content = host::BuildString("Subject: caf\xE9\n\n", abi::kIsoLatin1);
  objects::MimeEmailConstructor1(email.get(), content.get());
  EXPECT_EQ(Show(RecordOf(email).Subject), MacRoman("caf\xE9"));
  EXPECT_EQ(RecordOf(email).Source.get(), content.get());
}

TEST_F(EmailConstructor, FromNothingIsRefused) {
  constexpr char kRefused[] = "UnsupportedOperationException, 0: Can't parse empty text.";
  const auto email = NewEmail();
  objects::MimeEmailConstructor1(email.get(), nullptr);
  EXPECT_EQ(TakeRaised(), kRefused);
  objects::MimeEmailConstructor2(email.get(), nullptr);
  EXPECT_EQ(TakeRaised(), kRefused);
  objects::MimeEmailConstructor3(email.get(), nullptr);
  EXPECT_EQ(TakeRaised(), "IOException, 0: Failed to open file for reading.");
}

TEST_F(EmailConstructor, FromABlockParsesItsBytes) {
  const auto email = NewEmail();
  const auto block = standin::MakeMemoryBlock("Subject: x\n\nbody");
  objects::MimeEmailConstructor2(email.get(), block.raw());
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("body"));
  EXPECT_EQ(Show(RecordOf(email).Source), Ascii("Subject: x\n\nbody"));
}

TEST_F(EmailConstructor, LogsItsName) {
  const auto email = NewEmail();
  const LogCapture log;
  objects::MimeEmailConstructor1(email.get(), nullptr);
  objects::MimeEmailConstructor2(email.get(), nullptr);
  objects::MimeEmailConstructor3(email.get(), nullptr);
  EXPECT_EQ(log.Text(),
            Logged({"MimeEmailConstructor1", "data is NULL, so size fixed to zero.",
                    "MimeEmailConstructor 0", "MimeEmailConstructor2", "MimeEmailConstructor 0",
                    "MimeEmailConstructor3", "folderitem is nil"}));
  EXPECT_NE(TakeRaised(), "");
}

class SourceWithoutFiles : public EmailTest {
 protected:
  static std::string Stripped(std::string_view source, abi::Encoding encoding = abi::kUtf8) {
    const auto email = NewEmail();
    RecordOf(email).Source.Put(host::BuildString(source, encoding));
    return Show(host::StringRef::Adopt(objects::SourceWithoutAttachments(email.get())));
  }
};

TEST_F(SourceWithoutFiles, IsTheMessageWithoutThem) {
  EXPECT_EQ(Stripped(Mixed({"Content-Type: text/plain\n\ntext",
                            "Content-Type: application/pdf\nContent-Disposition: "
                            "attachment; filename=a.pdf\n\npdf"})),
            Ascii("Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\rContent-Type: "
                  "text/plain\r\rtext\r--b--\r"));
}

TEST_F(SourceWithoutFiles, OfNilIsNil) {
  const auto email = NewEmail();
  EXPECT_EQ(objects::SourceWithoutAttachments(email.get()), nullptr);
  EXPECT_EQ(objects::SourceWithoutAttachments(nullptr), nullptr);
}

TEST_F(SourceWithoutFiles, ReadsTheSourceAsUtf8UpToANul) {
  EXPECT_EQ(Stripped("A: b\n\ncaf\xE9", abi::kIsoLatin1), Utf8("A: b\r\rcaf\xC3\xA9"));
  EXPECT_EQ(Stripped({"A: b\n\none\0two", 13}), Ascii("A: b\r\rone"));
}

TEST_F(SourceWithoutFiles, RaisesWhatIsThrown) {
  const auto email = NewEmail();
  RecordOf(email).Source.Put(NewText(NestedMessage(Nesting::kMultipart, 100'000)));
  EXPECT_EQ(objects::SourceWithoutAttachments(email.get()), nullptr);
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the message has too many parts");
}

}  // namespace
}  // namespace zqv::test
