#include "email/strip.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "host/strings.h"
#include "mime/parser.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/email/email_fixture.h"
#include "tests/unit/host/log_capture.h"
#include "tests/unit/mime/nested_message.h"

namespace zqv::test {
namespace {

struct LineBreakRow {
  const char* name;
  std::string_view text;
  std::string_view rewritten;
  std::size_t removed;
};

void PrintTo(const LineBreakRow& row, std::ostream* out) { *out << row.name; }

class LineBreaksOf : public ::testing::TestWithParam<LineBreakRow> {};

TEST_P(LineBreaksOf, BecomeSingleCrs) {
  std::size_t removed = 0;
  EXPECT_EQ(email::RewriteLineBreaks(GetParam().text, removed), GetParam().rewritten);
  EXPECT_EQ(removed, GetParam().removed);
}

constexpr LineBreakRow kLineBreaks[] = {
    // clang-format off
    {"None",                "abc",                  "abc",           0},
    {"Empty",               "",                     "",              0},
    {"CrLf",                "ab\r\ncd",             "ab\rcd",        1},
    {"LfCr",                "ab\n\rcd",             "ab\rcd",        1},
    {"Lf",                  "ab\ncd",               "ab\rcd",        0},
    {"Cr",                  "ab\rcd",               "ab\rcd",        0},
    {"TwoCrLf",             "ab\r\n\r\ncd",         "ab\r\rcd",      2},
    {"TwoCrLfFromOneOn",    "a\r\n\r\nb",           "a\r\rb",        2},
    {"TwoLf",               "ab\n\ncd",             "ab\r\rcd",      0},
    {"TwoCr",               "ab\r\rcd",             "ab\r\rcd",      0},
    {"CrLfLf",              "ab\r\n\ncd",           "ab\r\rcd",      1},
    {"CrCrLf",              "ab\r\r\ncd",           "ab\r\rcd",      1},
    {"LfCrLf",              "ab\n\r\ncd",           "ab\r\rcd",      1},
    {"AtTheStart",          "\nab",                 "\rab",          0},
    {"CrLfAtTheStart",      "\r\nab",               "\rab",          1},
    {"AtTheEnd",            "ab\r\n",               "ab\r",          1},
    {"Apart",               "ab\rc\nd",             "ab\rc\rd",      0},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Texts, LineBreaksOf, ::testing::ValuesIn(kLineBreaks),
                         [](const auto& row) { return row.param.name; });

TEST(LineBreaks, BreakAtPositionOneIsDropped) {
  std::size_t removed = 0;
  EXPECT_EQ(email::RewriteLineBreaks("a\nb\n", removed), "ab\r");
  EXPECT_EQ(removed, 1U);
  removed = 0;
  EXPECT_EQ(email::RewriteLineBreaks("a\rb\r", removed), "ab\r");
  EXPECT_EQ(removed, 1U);
  // The CR at position 1 goes; the LF behind it then is a break of its own.
  removed = 0;
  EXPECT_EQ(email::RewriteLineBreaks("a\r\nb", removed), "a\rb");
  EXPECT_EQ(removed, 1U);
}

class Strip : public EmailTest {
 protected:
  static std::string Stripped(std::string_view source, abi::Encoding encoding = abi::kUtf8) {
    const auto email = NewEmail();
    RecordOf(email).Source.Put(host::BuildString(source, encoding));
    return Show(host::StringRef::Adopt(email::SourceWithoutAttachments(email.get())));
  }
};

TEST_F(Strip, WithoutFilesGivesTheMessageWithSingleCrs) {
  EXPECT_EQ(Stripped("Subject: x\nTo: y\n\nline\n\nend\n"),
            Ascii("Subject: x\rTo: y\r\rline\r\rend\r"));
}

constexpr char kText[] = "Content-Type: text/plain\n\ntext";

TEST_F(Strip, KeepsTheTextAndTheFrame) {
  EXPECT_EQ(Stripped(Mixed({kText,
                            "Content-Type: application/pdf\nContent-Disposition: "
                            "attachment; filename=a.pdf\n\npdf"})),
            Ascii("Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\rContent-Type: "
                  "text/plain\r\rtext\r--b--\r"));
}

TEST_F(Strip, OnlyTheDispositionDecides) {
  const auto image = [](const std::string& fields) {
    return "Content-Type: multipart/related; boundary=b\n\n--b\nContent-Type: image/png\n" +
           fields + "\nimage\n--b--\n";
  };
  const auto has_image = [&](const std::string& fields) {
    return Stripped(image(fields)).find("image\r--b--") != std::string::npos;
  };
  EXPECT_TRUE(has_image(""));
  EXPECT_TRUE(has_image("Content-ID: <i>\n"));
  EXPECT_TRUE(has_image("Content-Disposition: form-data\n"));
  EXPECT_FALSE(has_image("Content-Disposition: inline\n"));
  EXPECT_FALSE(has_image("Content-Disposition: ATTACHMENT\n"));
  EXPECT_FALSE(has_image("Content-ID: <i>\nContent-Disposition: Inline; filename=x\n"));
}

TEST_F(Strip, RemovesPlainTextMarkedInline) {
  const std::string stripped =
      Stripped(Mixed({"Content-Type: text/plain\nContent-Disposition: inline\n\ntext"}));
  EXPECT_EQ(stripped.find("text\r"), std::string::npos);
}

TEST_F(Strip, NeverRemovesTheMessageItself) {
  EXPECT_EQ(Stripped("Content-Disposition: attachment\n\nbody\n"),
            Ascii("Content-Disposition: attachment\r\rbody\r"));
}

TEST_F(Strip, RemovesInsideContainersThatStayAndWholeOnesThatGo) {
  const std::string file = "Content-Disposition: attachment\n\nfile";
  const std::string inner = "Content-Type: multipart/mixed; boundary=i\n\n--i\n" +
                            std::string(kText) +
                            "\n--i\nContent-Disposition: inline\n\npicture\n--i--";
  const std::string gone = "Content-Disposition: attachment\n" + inner;
  const std::string kept = Stripped(Mixed({file, inner, file}));
  EXPECT_NE(kept.find("text\r--i--"), std::string::npos);
  EXPECT_EQ(kept.find("picture"), std::string::npos);
  EXPECT_EQ(kept.find("file"), std::string::npos);
  EXPECT_EQ(Stripped(Mixed({file, gone, file})),
            Ascii("Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\r\r--b--\r"));
}

TEST_F(Strip, OfNilIsNil) {
  const auto email = NewEmail();
  EXPECT_EQ(email::SourceWithoutAttachments(email.get()), nullptr);
  EXPECT_EQ(email::SourceWithoutAttachments(nullptr), nullptr);
}

TEST_F(Strip, ReadsTheSourceAsUtf8UpToANul) {
  EXPECT_EQ(Stripped("A: b\n\ncaf\xE9", abi::kIsoLatin1), Utf8("A: b\r\rcaf\xC3\xA9"));
  EXPECT_EQ(Stripped({"A: b\n\none\0two", 13}), Ascii("A: b\r\rone"));
}

TEST_F(Strip, SaysWhatItDoesAndScansAnewAfterEachRemoval) {
  const auto email = NewEmail();
  RecordOf(email).Source.Put(NewText(
      Mixed({kText, "Content-Disposition: attachment\n\nx", "Content-Disposition: Inline\n\nx"})));
  const LogCapture log;
  const auto stripped = host::StringRef::Adopt(email::SourceWithoutAttachments(email.get()));
  EXPECT_EQ(log.Text(),
            Logged({"IsAttachment ", "IsAttachment attachment", "Removed an attachment.",
                    "IsAttachment ", "IsAttachment Inline", "Removed an attachment.",
                    "IsAttachment ", "FixLineEndings", "removed characters 7"}));
}

TEST_F(Strip, RaisesWhatIsThrown) {
  const auto email = NewEmail();
  RecordOf(email).Source.Put(NewText(NestedMessage(Nesting::kMultipart, 100'000)));
  RunOnStack(kSmallStack,
             [&] { EXPECT_EQ(email::SourceWithoutAttachments(email.get()), nullptr); });
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the message is nested too deeply");
}

// What the parser accepts on a small stack can also be stripped there, less the few levels that the
// frames around it cost.
TEST_F(Strip, DoesTheDeepestMessageOnASmallStack) {
  for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
    const std::size_t levels = MostLevels(nesting, kSmallStack) - 3;
    const auto email = NewEmail();
    RecordOf(email).Source.Put(NewText(NestedMessage(nesting, levels)));
    RunOnStack(kSmallStack, [&] {
      const auto text = Show(host::StringRef::Adopt(email::SourceWithoutAttachments(email.get())));
      EXPECT_NE(text.find("end\r"), std::string::npos);
    });
  }
}

}  // namespace
}  // namespace zqv::test
