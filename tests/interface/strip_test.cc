// SourceWithoutAttachments: the source of a message without its files.
//
// The expected texts follow from how a message is written: one line a header field, Content-Type in
// its parsed form with quoted parameters, a blank line, and the body as it was. Before each part
// come a blank line and its boundary line. Finally every line break becomes one CR.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standin/mirror.h"
#include "tests/interface/log_capture.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/interface/utf16.h"

namespace zqv::interface_test {
namespace {

using std::string_view_literals::operator""sv;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kEmail = "MimeEmailZQV";

class Strip : public InterfaceTest {};

std::string Stripped(const Object& message) {
  return Show(Call(message, "SourceWithoutAttachments"));
}

Object FromString(const String& source) {
  return standin::Construct(kEmail, "Constructor(Content as string)", source);
}

std::string StrippedUtf8(std::string_view source) {
  return Stripped(FromString(MakeString(source, abi::kUtf8)));
}

// Makes a multipart. A part must not end in a line end.
std::string Multipart(const std::string& subtype, const std::string& boundary,
                      const std::vector<std::string>& parts) {
  std::string source = "Content-Type: multipart/" + subtype + "; boundary=" + boundary + "\n";
  for (const std::string& part : parts) source += "\n--" + boundary + "\n" + part;
  return source + "\n--" + boundary + "--\n";
}

// The same multipart as the library writes it.
std::string Written(const std::string& subtype, const std::string& boundary,
                    const std::vector<std::string>& parts) {
  std::string text = "Content-Type: multipart/" + subtype + "; boundary=\"" + boundary + "\"\r";
  for (const std::string& part : parts) text += "\r--" + boundary + "\r" + part;
  return text + "\r--" + boundary + "--\r";
}

constexpr const char* kText = "Content-Type: text/plain\n\ntext";
constexpr const char* kTextWritten = "Content-Type: text/plain\r\rtext";
constexpr const char* kPdf =
    "Content-Type: application/pdf\nContent-Disposition: attachment; filename=a.pdf\n\npdf";

// Removes the line end of a nested container, because Multipart writes one before the next
// boundary.
std::string WithoutLastLineEnd(std::string source) {
  source.pop_back();
  return source;
}

TEST_F(Strip, WithoutFilesGivesTheMessageWithSingleCrs) {
  Start();
  EXPECT_EQ(StrippedUtf8("Subject: x\nTo: y\n\nline\n\nend\n"),
            "0x600 Subject: x\rTo: y\r\rline\r\rend\r");
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kText, kText})),
            "0x600 " + Written("mixed", "b", {kTextWritten, kTextWritten}));
}

TEST_F(Strip, KeepsTheTextAndTheFrame) {
  Start();
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kText, kPdf})),
            "0x600 " + Written("mixed", "b", {kTextWritten}));
}

TEST_F(Strip, RemovesFilesAtAnyPosition) {
  Start();
  const std::string other = "Content-Disposition: INLINE\n\nother";
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kPdf, other, kText, kPdf, kText, other, kPdf})),
            "0x600 " + Written("mixed", "b", {kTextWritten, kTextWritten}));
  // A container whose parts are all removed keeps its first boundary line.
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kPdf, other})),
            "0x600 " + Written("mixed", "b", {""}));
}

// An image with a Content-ID is listed in Inlines. Without a disposition it is not removed.
TEST_F(Strip, OnlyTheDispositionDecides) {
  Start();
  const auto image = [](const std::string& fields) {
    return "Content-Type: image/png\n" + fields + "\nimage";
  };
  const auto related = [&](const std::string& fields) {
    return StrippedUtf8(Multipart("related", "r", {kText, image(fields)}));
  };
  const std::string gone = "0x600 " + Written("related", "r", {kTextWritten});
  EXPECT_EQ(related("Content-Disposition: inline\n"), gone);
  EXPECT_EQ(related("Content-ID: <i>\nContent-Disposition: Inline; filename=i.png\n"), gone);
  EXPECT_EQ(related("Content-Disposition: attachment\n"), gone);
  EXPECT_EQ(related(""),
            "0x600 " + Written("related", "r", {kTextWritten, "Content-Type: image/png\r\rimage"}));
  EXPECT_EQ(
      related("Content-ID: <i>\n"),
      "0x600 " + Written("related", "r",
                         {kTextWritten, "Content-Type: image/png\rContent-ID: <i>\r\rimage"}));
  EXPECT_EQ(related("Content-Disposition: form-data\n"),
            "0x600 " + Written("related", "r",
                               {kTextWritten,
                                "Content-Type: image/png\rContent-Disposition: form-data\r"
                                "\rimage"}));
}

// The text is the message's plain text, and its disposition removes it from the source all the
// same.
TEST_F(Strip, RemovesPlainTextMarkedInline) {
  Start();
  const Object message =
      Parse(Multipart("mixed", "b",
                      {"Content-Type: text/plain\nContent-Disposition: inline\n\nmarked",
                       "Content-Type: text/html\n\n<p>H"}));
  EXPECT_EQ(ShowProperty(message, "PlainText"), "0x600 marked");
  EXPECT_EQ(Stripped(message),
            "0x600 " + Written("mixed", "b", {"Content-Type: text/html\r\r<p>H"}));
}

TEST_F(Strip, NeverRemovesTheMessageItself) {
  Start();
  EXPECT_EQ(StrippedUtf8("Content-Disposition: attachment\n\nbody\n"),
            "0x600 Content-Disposition: attachment\r\rbody\r");
}

TEST_F(Strip, PrunesContainersThatStayAndRemovesMarkedOnesWhole) {
  Start();
  const std::string inner = WithoutLastLineEnd(Multipart("alternative", "i", {kText, kPdf}));
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {inner, kPdf})),
            "0x600 " + Written("mixed", "b", {Written("alternative", "i", {kTextWritten})}));
  EXPECT_EQ(
      StrippedUtf8(Multipart("mixed", "b", {kText, "Content-Disposition: attachment\n" + inner})),
      "0x600 " + Written("mixed", "b", {kTextWritten}));
}

TEST_F(Strip, PrunesAttachedMessagesThatStay) {
  Start();
  const std::string inner =
      "Subject: Inner\n" + WithoutLastLineEnd(Multipart("mixed", "i", {kText, kPdf}));
  const std::string inner_written = "Subject: Inner\r" + Written("mixed", "i", {kTextWritten});
  const std::string attached = "Content-Type: message/rfc822\n";
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kText, attached + "\n" + inner, kPdf})),
            "0x600 " + Written("mixed", "b",
                               {kTextWritten, "Content-Type: message/rfc822\r\r" + inner_written}));
  EXPECT_EQ(StrippedUtf8(
                Multipart("mixed", "b", {kText, attached + "\n" + attached + "\n" + inner, kPdf})),
            "0x600 " + Written("mixed", "b",
                               {kTextWritten,
                                "Content-Type: message/rfc822\r\rContent-Type: message/rfc822\r\r" +
                                    inner_written}));
  EXPECT_EQ(
      StrippedUtf8(Multipart(
          "mixed", "b", {kText, attached + "Content-Disposition: attachment\n\n" + inner, kPdf})),
      "0x600 " + Written("mixed", "b", {kTextWritten}));
}

// The header of an attached message can have the disposition that removes the part.
TEST_F(Strip, RemovesAMessageWithTheDispositionOfAFile) {
  Start();
  EXPECT_EQ(StrippedUtf8("Content-Type: message/rfc822\n\nContent-Disposition: attachment\n\nx\n"),
            "0x600 Content-Type: message/rfc822\r");
}

// Of four CRLFs, two in the header and two in the body, each loses its LF.
TEST_F(Strip, MakesEachLineBreakOneCr) {
  Start();
  EXPECT_EQ(StrippedUtf8("X: y\r\n\r\na\r\n\r\nb"), "0x600 X: y\r\ra\r\rb");
  EXPECT_EQ(StrippedUtf8("X: y\n\na\n\rb\nc\rd\r\n\ne\r\rf"), "0x600 X: y\r\ra\rb\rc\rd\r\re\r\rf");
  const Object message = Parse("X: y\r\n\r\na\r\n\r\nb");
  const LogCapture log;
  SetShared(kEmail, "Debugging", true);
  EXPECT_EQ(Stripped(message), "0x600 X: y\r\ra\r\rb");
  SetShared(kEmail, "Debugging", false);
  EXPECT_THAT(log.Lines(), Contains("ZQV Debug: removed characters 4"));
}

TEST_F(Strip, OfAStringIsReadInTheStringsEncoding) {
  Start();
  const std::string utf8 = "0x8000100 A: b\r\rcaf\xC3\xA9\r";
  EXPECT_EQ(StrippedUtf8("A: b\n\ncaf\xC3\xA9\n"), utf8);
  EXPECT_EQ(Stripped(FromString(MakeString("A: b\n\ncaf\xE9\n", abi::kIsoLatin1))), utf8);
  EXPECT_EQ(Stripped(FromString(MakeString("A: b\n\ncaf\x8E\n", abi::kMacRoman))), utf8);
  EXPECT_EQ(Stripped(FromString(MakeString("A: b\n\ncaf\x8E\n", abi::kUnknownEncoding))), utf8);
  EXPECT_EQ(Stripped(FromString(MakeString("A: b\n\ncafe\n", abi::kUnknownEncoding))),
            "0x600 A: b\r\rcafe\r");
}

// Bytes labelled ISO 8859-1 become UTF-8 of the same code points, control characters included. A
// text with ESC is not detected as UTF-8, which changes the label and not the bytes.
TEST_F(Strip, OfIsoLatin1KeepsEveryByte) {
  Start();
  std::string source = "A: b\n\n";
  std::string utf8 = "A: b\r\r";
  for (int byte = 0x80; byte <= 0xFF; ++byte) {
    source.push_back(static_cast<char>(byte));
    utf8.push_back(byte < 0xC0 ? '\xC2' : '\xC3');
    utf8.push_back(static_cast<char>(0x80 + byte % 0x40));
  }
  EXPECT_EQ(Stripped(FromString(MakeString(source, abi::kIsoLatin1))), "0x8000100 " + utf8);
  EXPECT_EQ(Stripped(FromString(MakeString(source + "\x1B", abi::kIsoLatin1))),
            "0x0 " + utf8 + "\x1B");
}

// The message was parsed from the bytes of the string, in which no disposition is found. The source
// is converted to text first.
TEST_F(Strip, OfAUtf16StringIsReadAsText) {
  Start();
  const std::string source = Multipart("mixed", "b", {kText, kPdf});
  const Object message = FromString(MakeUtf16(std::u16string(source.begin(), source.end())));
  EXPECT_EQ(ObjectOf(Call(message, "Attachments")).Size(), 1)
      << "the whole message is listed as one file";
  EXPECT_EQ(Stripped(message), "0x600 " + Written("mixed", "b", {kTextWritten}));
  EXPECT_EQ(Stripped(FromString(MakeUtf16(u"A: b\n\ncaf\u00E9 \U0001F600"))),
            "0x8000100 A: b\r\rcaf\xC3\xA9 \xF0\x9F\x98\x80");
}

// Blocks and files have no encoding, so bytes above 0x7F are read as Mac Roman: 8E is an e with
// acute accent, C3 the square root, A9 the copyright sign.
TEST_F(Strip, OfABlockOrFileIsReadAsMacRoman) {
  Start();
  for (const Way way : {Way::kBlock, Way::kFile}) {
    EXPECT_EQ(Stripped(Parse("A: b\n\ncaf\x8E\n", way)), "0x8000100 A: b\r\rcaf\xC3\xA9\r");
    EXPECT_EQ(Stripped(Parse("A: b\n\ncaf\xC3\xA9\n", way)),
              "0x8000100 A: b\r\rcaf\xE2\x88\x9A\xC2\xA9\r");
    EXPECT_EQ(Stripped(Parse("A: b\n\ncafe\n", way)), "0x600 A: b\r\rcafe\r");
  }
}

// Text with a form feed or DEL is not accepted as UTF-8.
TEST_F(Strip, ResultIsAsciiUtf8OrMacRomanByItsBytes) {
  Start();
  EXPECT_EQ(StrippedUtf8("A: b\n\n\x0C\x7F"), "0x600 A: b\r\r\x0C\x7F");
  EXPECT_EQ(StrippedUtf8("A: b\n\n\x0C\xC3\xA9"), "0x0 A: b\r\r\x0C\xC3\xA9");
  EXPECT_EQ(StrippedUtf8("A: b\n\n\x7F\xC3\xA9"), "0x0 A: b\r\r\x7F\xC3\xA9");
  EXPECT_EQ(StrippedUtf8("A: b\n\ncaf\xE9"), "0x0 A: b\r\rcaf\xE9") << "the bytes are not UTF-8";
  // Bytes above 0x7F in a removed file do not count.
  EXPECT_EQ(StrippedUtf8(Multipart("mixed", "b", {kText, std::string(kPdf) + "\xC3\xA9"})),
            "0x600 " + Written("mixed", "b", {kTextWritten}));
}

TEST_F(Strip, ANulEndsTheSource) {
  Start();
  EXPECT_EQ(StrippedUtf8("A: b\n\none\0two"sv), "0x600 A: b\r\rone");
  EXPECT_EQ(StrippedUtf8("A: b\n\ncaf\xC3\xA9\0two"sv), "0x8000100 A: b\r\rcaf\xC3\xA9");
  for (const Way way : kAllWays) {
    const Object message = Parse("A: b\n\none\0two"sv, way);
    EXPECT_EQ(standin::BytesOf(Get(message, "PlainText")), "one\0two"sv) << NameOf(way);
    EXPECT_EQ(Stripped(message), "0x600 A: b\r\rone") << NameOf(way);
    EXPECT_EQ(Stripped(Parse("A: b\n\ncaf\x8E\0two"sv, way)), "0x8000100 A: b\r\rcaf\xC3\xA9")
        << NameOf(way);
  }
}

TEST_F(Strip, WithoutSourceIsNil) {
  Start();
  EXPECT_EQ(Stripped(NewInstance(kEmail)), "nil");
  const Constructed empty = ConstructFromString("");
  EXPECT_NE(empty.raised, "");
  EXPECT_EQ(Stripped(empty.message), "nil");
}

// The first byte is not checked here. A line that begins with a byte above 0x7F is not a header
// field, so the whole text is the body of a message without a header.
TEST_F(Strip, AcceptsInputThatTheConstructorRefuses) {
  Start();
  const Constructed refused = ConstructOn(NewInstance(kEmail), "Constructor(Content as string)",
                                          MakeString("\xC3\xA9: x\n\nT"));
  EXPECT_NE(refused.raised, "");
  EXPECT_EQ(Stripped(refused.message), "0x8000100 \r\xC3\xA9: x\r\rT");
  const Object marked =
      FromString(MakeString("\xEF\xBB\xBF"
                            "A: b\n\nT"));
  EXPECT_EQ(ShowProperty(marked, "PlainText"), "0x600 T");
  EXPECT_EQ(Stripped(marked),
            "0x8000100 \r\xEF\xBB\xBF"
            "A: b\r\rT");
}

TEST_F(Strip, LeavesTheMessageAsItWas) {
  Start();
  for (const Way way : kAllWays) {
    const Object message = Parse(RichMessage(), way);
    const std::string before = standin::Mirror(message).dump();
    const auto source = std::get<String>(Get(message, "Source"));
    const std::int64_t locks = source.locks();
    const std::string first = Stripped(message);
    EXPECT_THAT(first, Not(HasSubstr("plan.pdf")));
    EXPECT_THAT(first, HasSubstr("The attached one"));
    EXPECT_EQ(Stripped(message), first);
    EXPECT_EQ(source.locks(), locks);
    EXPECT_TRUE(std::get<String>(Get(message, "Source")) == source);
    EXPECT_EQ(source.bytes(), RichMessage());
    EXPECT_EQ(standin::Mirror(message).dump(), before);
    EXPECT_EQ(ObjectOf(Call(message, "Attachments")).Size(), 3)
        << "the plan, the attached message, and its text";
  }
}

// Each call returns a new string, of which the application owns the lock.
TEST_F(Strip, IsANewStringAtEachCall) {
  Start();
  const Object message = Parse(PlainMessage());
  const auto first = std::get<String>(Call(message, "SourceWithoutAttachments"));
  EXPECT_EQ(first.locks(), 1);
  EXPECT_FALSE(first == std::get<String>(Call(message, "SourceWithoutAttachments")));
}

// The field names of a parsed message.
std::vector<std::string> FieldNames(const Object& message) {
  std::vector<std::string> names;
  const Object fields =
      ObjectOf(Call(ObjectOf(Get(message, "Header")), "Fields as MimeFieldZQV()"));
  for (std::int64_t i = 0; i < fields.Size(); ++i) {
    names.push_back(standin::BytesOf(Get(ObjectOf(fields.At(i)), "Name")));
  }
  return names;
}

// Line breaks are hidden in encoded words, quotes, comments, folds, and in long lines that are
// folded again.
TEST_F(Strip, AddsNoField) {
  Start();
  const std::string source =
      "Subject: =?utf-8?Q?a=0D=0ABcc:_eve@example.org?= =?utf-8?B?DQpFdmlsOiB4?=\n"
      "To: \"a\n Bcc: eve@example.org\" <b@example.org>, c@example.org (\n Evil: x)\n"
      "X-Long: " +
      std::string(80, 'a') + " Bcc: " + std::string(80, 'b') + " \t Evil: x\n" +
      "Content-Type: text/plain; name=\"a\n Evil: x\"\n\ntext\n";
  const Object message = FromString(MakeString(source, abi::kUtf8));
  const std::string written = standin::BytesOf(Call(message, "SourceWithoutAttachments"));
  EXPECT_EQ(FieldNames(message),
            (std::vector<std::string>{"Subject", "To", "X-Long", "Content-Type"}));
  EXPECT_EQ(FieldNames(FromString(MakeString(written, abi::kUtf8))), FieldNames(message));
  EXPECT_THAT(written, HasSubstr("\r\rtext\r"));
}

}  // namespace
}  // namespace zqv::interface_test
