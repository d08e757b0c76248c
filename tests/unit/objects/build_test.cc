#include "objects/build.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/strings.h"
#include "mime/limits.h"
#include "objects/switches.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/mime/nested_message.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_view_literals;

constexpr std::string_view kMark = "\xEF\xBB\xBF";

class ParseMessage : public EmailTest {};

TEST_F(ParseMessage, OfNothingIsRefusedAndKeepsTheLists) {
  const auto email = ParseEmail("");
  EXPECT_EQ(TakeRaised(), "UnsupportedOperationException, 0: Can't parse empty text.");
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_NE(record.Inlines.get(), nullptr);
  EXPECT_NE(record.Attachments.get(), nullptr);
  EXPECT_EQ(Show(record.Source), "nil");
  EXPECT_EQ(record.Header.get(), nullptr);
  EXPECT_EQ(record.Body.get(), nullptr);
}

TEST_F(ParseMessage, OfOnlyAByteOrderMarkIsRefused) {
  const auto email = ParseEmail(kMark);
  EXPECT_EQ(TakeRaised(), "UnsupportedOperationException, 0: Can't parse empty text.");
  EXPECT_EQ(Show(RecordOf(email).Source), Shown(abi::kUnknownEncoding, kMark));
}

TEST_F(ParseMessage, BehindAByteOrderMarkIsParsedAndTheSourceKeepsTheMark) {
  const std::string message = std::string(kMark) + "Subject: x\n\nbody\n";
  const auto email = ParseEmail(message);
  EXPECT_EQ(Show(RecordOf(email).Subject), Ascii("x"));
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("body\n"));
  EXPECT_EQ(Show(RecordOf(email).Source), Shown(abi::kUnknownEncoding, message));
}

constexpr char kMustStart[] =
    "UnsupportedOperationException, 0: Email must start with an header text. BOM character?";

TEST_F(ParseMessage, WhoseFirstByteIsNotAsciiIsRefused) {
  for (const char* message :
       {"\x80 A: b\n\n", "\xC3\xA9: b\n\n", "\xFF", "\xEF\xBB", "\xEF\xBB\xBE"}) {
    const auto email = ParseEmail(message);
    EXPECT_EQ(TakeRaised(), kMustStart);
    EXPECT_NE(Show(RecordOf(email).Source), "nil");
    EXPECT_EQ(RecordOf(email).Header.get(), nullptr);
  }
}

TEST_F(ParseMessage, WithTwoByteOrderMarksIsRefused) {
  const auto email = ParseEmail(std::string(kMark) + std::string(kMark) + "A: b\n\n");
  EXPECT_EQ(TakeRaised(), kMustStart);
}

TEST_F(ParseMessage, WhoseFirstByteIsAnyOtherIsParsed) {
  for (int byte = 0; byte < 0x80; ++byte) {
    const auto email = ParseEmail(std::string(1, static_cast<char>(byte)) + "A: b\n\nbody\n");
    EXPECT_EQ(TakeRaised(), "") << byte;
    EXPECT_NE(RecordOf(email).Header.get(), nullptr) << byte;
  }
}

TEST_F(ParseMessage, KeepsTheVeryStringThatItWasGiven) {
  const auto email = NewEmail();
  const auto source = host::BuildString("Subject: caf\xE9\n\n", abi::kIsoLatin1);
  objects::MimeEmailConstructor(email.get(), "Subject: x\n\n"sv, source.get());
  EXPECT_EQ(RecordOf(email).Source.get(), source.get());
  EXPECT_EQ(LocksOf(source.get()), 2);
}

TEST_F(ParseMessage, LabelsTheSourceAsciiWhenItIs) {
  const auto email = ParseEmail("Subject: x\n\n");
  EXPECT_EQ(Show(RecordOf(email).Source), Ascii("Subject: x\n\n"));
}

TEST_F(ParseMessage, DecodesTheSubject) {
  EXPECT_EQ(Show(RecordOf(ParseEmail("Subject: =?utf-8?Q?Caf=C3=A9?=\n\n")).Subject),
            Utf8("Caf\xC3\xA9"));
  EXPECT_EQ(Show(RecordOf(ParseEmail("X: y\n\n")).Subject), "nil");
}

TEST_F(ParseMessage, TakesTextFromTheAlternativeAndListsTheRest) {
  const auto email =
      ParseEmail(Mixed({"Content-Type: multipart/alternative; boundary=a\n\n"
                        "--a\nContent-Type: text/plain\n\nplain\n"
                        "--a\nContent-Type: text/html\n\n<p>html</p>\n--a--",
                        "Content-Type: application/pdf; name=a.pdf\n\npdf"}));
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_EQ(Show(record.PlainText), Ascii("plain"));
  EXPECT_EQ(Show(record.HTMLText), Ascii("<p>html</p>"));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("a.pdf")));
  EXPECT_THAT(Inlines(email), IsEmpty());
}

TEST_F(ParseMessage, ListsASecondPlainTextByItsContentId) {
  const auto with_id = ParseEmail(Mixed({"Content-Type: text/plain\n\nfirst",
                                         "Content-Type: text/plain\nContent-ID: <i>\n\nsecond"}));
  EXPECT_EQ(Show(RecordOf(with_id).PlainText), Ascii("first"));
  ASSERT_EQ(Inlines(with_id).size(), 1U);
  EXPECT_EQ(Show(Inlines(with_id)[0]->Data), Ascii("second"));
  const auto without_id = ParseEmail(
      Mixed({"Content-Type: text/plain\n\nfirst", "Content-Type: text/plain\n\nsecond"}));
  EXPECT_THAT(Inlines(without_id), IsEmpty());
  ASSERT_EQ(Attachments(without_id).size(), 1U);
  EXPECT_EQ(Show(Attachments(without_id)[0]->Data), Ascii("second"));
}

TEST_F(ParseMessage, ListsInnerPartsBeforeLaterOuterOnes) {
  const auto email = ParseEmail(Mixed({"Content-Type: image/x; name=1\n\nx",
                                       "Content-Type: multipart/mixed; boundary=i\n\n"
                                       "--i\nContent-Type: image/x; name=2\n\nx\n"
                                       "--i\nContent-Type: image/x; name=3\n\nx\n--i--",
                                       "Content-Type: image/x; name=4\n\nx"}));
  EXPECT_THAT(Names(Attachments(email)),
              ElementsAre(Ascii("1"), Ascii("2"), Ascii("3"), Ascii("4")));
}

TEST_F(ParseMessage, OfOnlyHtmlGetsPlainTextFromIt) {
  const auto email = ParseEmail(Mixed({"Content-Type: text/html\n\n<b>bold</b> &amp; more"}));
  EXPECT_EQ(Show(RecordOf(email).HTMLText), Ascii("<b>bold</b> &amp; more"));
  EXPECT_EQ(Show(RecordOf(email).PlainText), Utf8("bold & more"));
}

TEST_F(ParseMessage, ThatIsAContainerHasNoDecodedBodyButItsPartsHave) {
  for (const char* subtype : {"mixed", "alternative", "related"}) {
    const auto email = ParseEmail("Content-Type: multipart/" + std::string(subtype) +
                                  "; boundary=b\n\n--b\nContent-Type: text/plain\n\ntext\n--b--\n");
    EXPECT_EQ(Show(RecordOf(email).BodyDecoded), "nil");
    ASSERT_EQ(Parts(RecordOf(email)).size(), 1U);
    EXPECT_EQ(Show(Parts(RecordOf(email))[0]->BodyDecoded), Ascii("text"));
  }
}

TEST_F(ParseMessage, HasItsDates) {
  const auto email = ParseEmail(
      "Received: a; Tue, 1 Jan 2019 10:00:00 +0000\nDate: Tue, 1 Jan 2019 09:00:00 +0000\n\n");
  EXPECT_NE(DateText(RecordOf(email).ReceivedDate), "nil");
  EXPECT_NE(DateText(RecordOf(email).SentDate), "nil");
  EXPECT_NE(DateText(RecordOf(email).SentDate), DateText(RecordOf(email).ReceivedDate));
}

TEST_F(ParseMessage, TwiceHoldsTheSecondAndGivesTheFirstBack) {
  const auto email = NewEmail();
  const std::string first =
      Mixed({"Content-Type: text/plain\n\nfirst", "Content-Type: text/html\n\nfirst", "X: y\n\nx"});
  objects::MimeEmailConstructor(email.get(), std::string_view(first), nullptr);
  objects::MimeEmailConstructor(email.get(),
                                "Subject: second\nContent-Type: text/plain\n\nsecond"sv, nullptr);
  EXPECT_EQ(Show(RecordOf(email).Subject), Ascii("second"));
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("second"));
  EXPECT_EQ(Show(RecordOf(email).HTMLText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(ParseMessage, FreesTheBytesThatItOwns) {
  auto memory = base::AllocateZeroed<char>(20);
  const std::string_view text = "Subject: x\n\nbody";
  text.copy(memory.get(), text.size());
  const auto email = NewEmail();
  objects::MimeEmailConstructor(email.get(), objects::MessageBytes(std::move(memory), text.size()),
                                nullptr);
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("body"));
}

TEST_F(ParseMessage, OnNilDoesNothing) {
  objects::MimeEmailConstructor(nullptr, "Subject: x\n\n"sv, nullptr);
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(ParseMessage, BeyondTheLimitsIsRefused) {
  const auto email = ParseEmail(NestedMessage(Nesting::kBoth, 100'000));
  EXPECT_EQ(RecordOf(email).Header.get(), nullptr);
  EXPECT_NE(RecordOf(email).Source.get(), nullptr);
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the message has too many parts");
}

// Creating and freeing the objects needs no recursion.
TEST_F(ParseMessage, ThatIsTheDeepestIsHandledOnASmallStack) {
  for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
    const std::string message = NestedMessage(nesting, mime::kMostParts - 1);
    RunOnStack(std::size_t{128} * 1024, [&] {
      const auto email = ParseEmail(message);
      EXPECT_NE(RecordOf(email).Header.get(), nullptr);
      EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
    });
    EXPECT_EQ(host().ledger().Report(), "");
  }
  EXPECT_EQ(TakeRaised(), "");
}

// The host throws when the deepest part of a deeply nested message is reached. Everything made so
// far is freed.
TEST_F(ParseMessage, ThatFailsDeepInsideIsFreedOnASmallStack) {
  StartEmailWithFault("PluginNewInstance",
                      {standin::Fault::Kind::kThrows, static_cast<int>(mime::kMostParts), 1});
  const std::string message = NestedMessage(Nesting::kMultipart, mime::kMostParts - 1);
  RunOnStack(std::size_t{128} * 1024, [&] {
    const auto email = ParseEmail(message);
    EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of PluginNewInstance");
    EXPECT_FALSE(RecordOf(email).Body);
  });
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(ParseMessage, KeepsWhatWasSetBeforeTheHostThrew) {
  StartEmailWithFault("PluginObjectArrayInsertProc", {standin::Fault::Kind::kThrows, 3, 1});
  // The lists of a part's fields and of the attachments are created first, then the list of parts.
  const auto email = ParseEmail(Mixed({"A: b\nC: d\n\nx"}));
  EXPECT_EQ(TakeRaised(),
            "RuntimeException, 0: C++ Exception: fault of PluginObjectArrayInsertProc");
  EXPECT_EQ(Attachments(email).size(), 1U);
  EXPECT_NE(Show(RecordOf(email).Source), "nil");
  EXPECT_EQ(RecordOf(email).Body.get(), nullptr);
  EXPECT_EQ(Show(RecordOf(email).Subject), "nil");
}

TEST_F(ParseMessage, LogsEachStepOfAPlainMessage) {
  const LogCapture log;
  const auto email = ParseEmail("Content-Type: text/plain\n\nbody");
  EXPECT_EQ(log.Text(), Logged({"MimeEmailConstructor 30", "decoded body of type text, plain",
                                "Set email plainText", "parts count 0"}));
}

TEST_F(ParseMessage, LogsEachStepOfAnImage) {
  const LogCapture log;
  const auto email = ParseEmail("Content-Type: image/png\n\nbody");
  EXPECT_EQ(log.Text(), Logged({"MimeEmailConstructor 29", "decoded body of type image, png",
                                "parts count 0", "no mime type, make it text"}));
}

TEST_F(ParseMessage, LogsEachStepOfAMultipart) {
  const LogCapture log;
  const auto email =
      ParseEmail(Mixed({"Content-Type: text/plain\n\none", "Content-Type: text/html\n\ntwo"}));
  EXPECT_EQ(log.Text(), Logged({"MimeEmailConstructor 116", "decoded body of type text, plain",
                                "Set email plainText", "decoded body of type text, html",
                                "Set email htmlText", "parts count 2"}));
}

class SinglePart : public EmailTest {};

TEST_F(SinglePart, PlainTextIsItsTextAndNotListed) {
  const auto email = ParseEmail("Content-Type: text/plain; charset=iso-8859-1\n\ncaf\xE9");
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_EQ(Show(record.PlainText), Shown(abi::kIsoLatin1, "caf\xE9"));
  EXPECT_EQ(Show(record.BodyDecoded), Shown(abi::kIsoLatin1, "caf\xE9"));
  EXPECT_THAT(Attachments(email), IsEmpty());
  EXPECT_THAT(Inlines(email), IsEmpty());
}

TEST_F(SinglePart, HtmlIsItsHtmlAndNotListed) {
  const auto email = ParseEmail("Content-Type: Text/Html; charset=utf-8\n\n<p>a</p>");
  EXPECT_EQ(Show(RecordOf(email).HTMLText), Utf8("<p>a</p>"));
  EXPECT_NE(Show(RecordOf(email).PlainText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(SinglePart, ImageIsListedAndOfferedAsText) {
  const auto email = ParseEmail(
      "Content-Type: image/png; name=a.png\nContent-Transfer-Encoding: base64\n\niVBORw0KGgo=\n");
  const std::string png = "\x89PNG\r\n\x1A\n";
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("a.png")));
  EXPECT_THAT(Inlines(email), IsEmpty());
  EXPECT_EQ(Show(RecordOf(email).PlainText), MacRoman(png));
  EXPECT_EQ(Show(RecordOf(email).BodyDecoded), MacRoman(png));
}

TEST_F(SinglePart, ImageWithContentIdIsListedInline) {
  const auto email = ParseEmail("Content-Type: image/x; name=a\nContent-ID: <i>\n\nx");
  EXPECT_THAT(Names(Inlines(email)), ElementsAre(Ascii("a")));
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(SinglePart, CalendarIsOfferedAsText) {
  const auto email = ParseEmail("Content-Type: text/calendar\n\nBEGIN:VCALENDAR\n");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("BEGIN:VCALENDAR\n"));
  EXPECT_EQ(Attachments(email).size(), 1U);
}

TEST_F(SinglePart, WithoutATypeIsOfferedAsText) {
  const auto email = ParseEmail("Subject: x\n\nbody\n");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("body\n"));
  EXPECT_EQ(Attachments(email).size(), 1U);
}

// The disposition makes the text an attachment; it is the message's text all the same.
TEST_F(SinglePart, TextMarkedAttachmentIsListedAndOfferedAsText) {
  const auto plain =
      ParseEmail("Content-Type: text/plain\nContent-Disposition: attachment; filename=a\n\nplain");
  EXPECT_THAT(Names(Attachments(plain)), ElementsAre(Ascii("a")));
  EXPECT_EQ(Show(RecordOf(plain).PlainText), Ascii("plain"));
  const auto html =
      ParseEmail("Content-Type: text/html\nContent-Disposition: attachment; filename=a\n\n<p>html");
  EXPECT_THAT(Names(Attachments(html)), ElementsAre(Ascii("a")));
  EXPECT_EQ(Show(RecordOf(html).HTMLText), Ascii("<p>html"));
}

TEST_F(SinglePart, OfAnUnknownMechanismHasNoTextButItsSubjectAndDates) {
  const auto email = ParseEmail(
      "Subject: x\nDate: Tue, 1 Jan 2019 10:00:00 +0000\nContent-Type: text/plain\n"
      "Content-Transfer-Encoding: x-uuencode\n\nbegin");
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_EQ(Show(record.BodyDecoded), "nil");
  EXPECT_EQ(Show(record.PlainText), "nil");
  EXPECT_EQ(Show(record.HTMLText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
  EXPECT_THAT(Inlines(email), IsEmpty());
  EXPECT_EQ(Show(record.Subject), Ascii("x"));
  EXPECT_NE(Show(record.Source), "nil");
  EXPECT_NE(DateText(record.SentDate), "nil");
}

TEST_F(SinglePart, WithoutCharsetTakesItsEncodingFromItsBytes) {
  const auto text = [](const char* body) {
    return Show(RecordOf(ParseEmail(std::string("Content-Type: text/plain\n\n") + body)).PlainText);
  };
  EXPECT_EQ(text("cafe"), Ascii("cafe"));
  EXPECT_EQ(text("caf\xC3\xA9"), Utf8("caf\xC3\xA9"));
  EXPECT_EQ(text("caf\xE9"), MacRoman("caf\xE9"));
  EXPECT_EQ(text(""), "nil");
}

// A container without parts counts as a single part with its own, empty body.
TEST_F(SinglePart, ContainerWithoutPartsHasNoText) {
  const auto email = ParseEmail("Content-Type: multipart/mixed; boundary=b\n\nno boundary\n");
  EXPECT_EQ(Show(RecordOf(email).BodyDecoded), "nil");
  EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(SinglePart, RaisesForAnUnknownCharsetOnce) {
  objects::setRaiseUnknownFormatExceptions(1);
  const auto email = ParseEmail("Content-Type: text/plain; charset=foo\n\nx");
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: foo");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("x"));
}

TEST_F(SinglePart, SharesTheBodyThatItListsAndTheOneThatItOffersApart) {
  const auto email = ParseEmail("Content-Type: image/x\n\nx");
  EXPECT_EQ(RecordOf(email).PlainText.get(), RecordOf(email).BodyDecoded.get());
  EXPECT_EQ(Show(Attachments(email)[0]->Data), Ascii("x"));
}

}  // namespace
}  // namespace zqv::test
