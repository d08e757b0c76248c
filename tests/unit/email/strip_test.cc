#include "email/strip.h"

#include <gtest/gtest.h>
#include <mimetic/mimetic.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mime/limits.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/mime/message_maker.h"
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
  std::string text(GetParam().text);
  EXPECT_EQ(email::RewriteLineBreaks(text), GetParam().removed);
  EXPECT_EQ(text, GetParam().rewritten);
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

// The rewritten text, for texts of which exactly one byte is dropped.
std::string WithoutOne(std::string text) {
  EXPECT_EQ(email::RewriteLineBreaks(text), 1U);
  return text;
}

TEST(LineBreaks, BreakAtPositionOneIsDropped) {
  EXPECT_EQ(WithoutOne("a\nb\n"), "ab\r");
  EXPECT_EQ(WithoutOne("a\rb\r"), "ab\r");
  // The CR at position 1 is dropped; the LF after it is then a line break by itself.
  EXPECT_EQ(WithoutOne("a\r\nb"), "a\rb");
}

std::string Stripped(std::string_view source) { return email::WriteWithoutFiles(source); }

TEST(Strip, WithoutFilesGivesTheMessageWithSingleCrs) {
  EXPECT_EQ(Stripped("Subject: x\nTo: y\n\nline\n\nend\n"), "Subject: x\rTo: y\r\rline\r\rend\r");
}

// A multipart/mixed message with these parts, each of which begins with its header.
std::string Mixed(const std::vector<std::string>& parts) {
  std::string message = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (const std::string& part : parts) message += "--b\n" + part + "\n";
  return message + "--b--\n";
}

constexpr char kText[] = "Content-Type: text/plain\n\ntext";

TEST(Strip, KeepsTheTextAndTheFrame) {
  EXPECT_EQ(Stripped(Mixed({kText,
                            "Content-Type: application/pdf\nContent-Disposition: "
                            "attachment; filename=a.pdf\n\npdf"})),
            "Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\rContent-Type: "
            "text/plain\r\rtext\r--b--\r");
}

TEST(Strip, OnlyTheDispositionDecides) {
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

TEST(Strip, RemovesPlainTextMarkedInline) {
  const std::string stripped =
      Stripped(Mixed({"Content-Type: text/plain\nContent-Disposition: inline\n\ntext"}));
  EXPECT_EQ(stripped.find("text\r"), std::string::npos);
}

TEST(Strip, NeverRemovesTheMessageItself) {
  EXPECT_EQ(Stripped("Content-Disposition: attachment\n\nbody\n"),
            "Content-Disposition: attachment\r\rbody\r");
}

TEST(Strip, RemovesInsideContainersThatStayAndWholeOnesThatGo) {
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
            "Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\r\r--b--\r");
}

TEST(Strip, EndsAtANul) { EXPECT_EQ(Stripped({"A: b\n\none\0two", 13}), "A: b\r\rone"); }

TEST(Strip, OfNothingIsNothing) { EXPECT_EQ(Stripped(""), "\r"); }

TEST(Strip, LogsEachRemovalAndScansAgain) {
  const std::string message =
      Mixed({kText, "Content-Disposition: attachment\n\nx", "Content-Disposition: Inline\n\nx"});
  const LogCapture log;
  EXPECT_NE(Stripped(message), "");
  EXPECT_EQ(log.Text(),
            Logged({"IsAttachment ", "IsAttachment attachment", "Removed an attachment.",
                    "IsAttachment ", "IsAttachment Inline", "Removed an attachment.",
                    "IsAttachment ", "FixLineEndings", "removed characters 7"}));
}

TEST(Strip, MultipartWithoutPartsKeepsItsBoundary) {
  EXPECT_EQ(Stripped(Mixed({"Content-Disposition: attachment\n\nx"})),
            "Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\r\r--b--\r");
  EXPECT_EQ(Stripped("Content-Type: multipart/mixed; boundary=b\n\nno boundary\n"),
            "Content-Type: multipart/mixed; boundary=\"b\"\r\rno boundary\r\r--b\r\r--b--\r");
}

// Content-Type is written in its parsed form in every part, Content-Disposition in every part but
// the message itself. All other fields keep their text.
TEST(Strip, WritesTheParsedContentFields) {
  EXPECT_EQ(Stripped("Mime-Version: 1.0 (x)\nContent-Disposition: x;a=b\nTo: a@b ,c@d\n"
                     "Content-Type: multipart/mixed;boundary=b\n\n--b\n"
                     "Content-Type: text/plain;charset=utf-8\nContent-Disposition: x;a=b\n\ntext\n"
                     "--b--\n"),
            "Mime-Version: 1.0 (x)\rContent-Disposition: x;a=b\rTo: a@b ,c@d\r"
            "Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\r"
            "Content-Type: text/plain; charset=\"utf-8\"\rContent-Disposition: x; a=\"b\"\r\rtext\r"
            "--b--\r");
}

// The tree that mimetic parses from `message`, written by mimetic, with each line break as a single
// CR.
std::string WrittenByMimetic(const std::string& message) {
  std::istringstream stream(message);
  const mimetic::MimeEntity entity(stream);
  std::ostringstream written;
  written << entity;
  std::string text = written.str();
  email::RewriteLineBreaks(text);
  return text.substr(0, text.find('\0'));
}

constexpr const char* kPieces[] = {
    "word",  " ", "\t",  "  ",    "\"",       "\\\"",         "a very long word, ",
    "; a=b", ",", "(c)", "<a@b>", "\xC3\xA9", "=?utf-8?Q?x?="};

// Random fields of all lengths, with blanks and quotes anywhere, are folded as by mimetic.
TEST(Strip, FoldsFieldsAsMimeticDoes) {
  std::mt19937 random(1);
  constexpr const char* kNames[] = {"Subject", "To", "X-Long-Name-Of-A-Field", "A", "Received"};
  for (int round = 0; round < 5'000; ++round) {
    std::string value = "v";
    for (auto left = random() % 40; left > 0; --left) {
      value += kPieces[random() % std::size(kPieces)];
    }
    const std::string message =
        std::string(kNames[random() % std::size(kNames)]) + ": " + value + "\n\nbody\n";
    ASSERT_EQ(Stripped(message), WrittenByMimetic(message)) << message;
  }
}

TEST(Strip, WritesMessagesAsMimeticDoes) {
  for (std::uint64_t seed = 1; seed <= 500; ++seed) {
    const std::string message = MessageMaker(seed).Make();
    ASSERT_EQ(Stripped(message), WrittenByMimetic(message)) << seed;
  }
}

TEST(Strip, RefusesAMessageBeyondTheLimits) {
  EXPECT_THROW(Stripped(NestedMessage(Nesting::kMultipart, 100'000)), std::runtime_error);
}

// The depth of nesting needs no call stack.
TEST(Strip, WritesTheDeepestMessageOnASmallStack) {
  for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
    const std::string message = NestedMessage(nesting, mime::kMostParts - 1);
    RunOnStack(std::size_t{128} * 1024,
               [&] { EXPECT_NE(Stripped(message).find("end\r"), std::string::npos); });
  }
}

}  // namespace
}  // namespace zqv::test
