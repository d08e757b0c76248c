// Encoded words decoded by the shared method DecodeInline, in a subject and in a mailbox's label.
// Expected texts are "encoding bytes": 0x600 is ASCII, 0x8000100 UTF-8, 0x201 Latin-1, 0x0 Mac
// Roman. Text in Latin-1 or Mac Roman with no byte above 0x7F becomes ASCII.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/interface/utf16.h"

namespace zqv::interface_test {
namespace {

using ::testing::StartsWith;

constexpr const char* kEmail = "MimeEmailZQV";

class Words : public InterfaceTest {};

std::string DecodedInline(const Value& text) {
  return Show(CallShared(kEmail, "DecodeInline", text));
}

std::string SubjectDecoded(const Object& message) {
  return ShowProperty(ObjectOf(Get(message, "Header")), "subjectDecoded");
}

// Checks that the shared method, the property Subject and the property SubjectDecoded decode a text
// in the same way.
void ExpectDecoded(const std::string& text, const std::string& shown) {
  EXPECT_EQ(DecodedInline(MakeString(text)), shown) << text;
  const Object message = Parse("Subject: " + text + "\n\nText\n");
  EXPECT_EQ(ShowProperty(message, "Subject"), shown) << text;
  EXPECT_EQ(SubjectDecoded(message), shown) << text;
}

TEST_F(Words, NilAndEmptyTextsAreNil) {
  Start();
  EXPECT_EQ(DecodedInline(standin::ToValue(nullptr)), "nil");
  EXPECT_EQ(DecodedInline(standin::MakeEmptyString(abi::kUtf8)), "nil");
  EXPECT_EQ(DecodedInline(standin::MakeEmptyString(abi::kUtf16)), "nil");
  for (const char* header : {"Subject:\nX: y\n", "X: y\n"}) {
    const Object message = Parse(std::string(header) + "\nText\n");
    EXPECT_EQ(ShowProperty(message, "Subject"), "nil") << header;
    EXPECT_EQ(SubjectDecoded(message), "nil") << header;
  }
}

// "0" is a name of Latin-1, and the only name short enough for a word of seven bytes.
TEST_F(Words, FewerThanSevenBytesAreNotDecoded) {
  Start();
  ExpectDecoded("=?0?Qx", "0x600 =?0?Qx");
  ExpectDecoded("=?0?Q?x", "0x600 x");
}

TEST_F(Words, QInUtf8) {
  Start();
  ExpectDecoded("=?utf-8?Q?Caf=C3=A9?=", "0x8000100 Caf\xC3\xA9");
}

TEST_F(Words, BAndQJoinOverOneSpace) {
  Start();
  ExpectDecoded("=?ISO-8859-1?B?QWxhZGRpbg==?= =?ISO-8859-1?Q?_x?=", "0x600 Aladdin x");
}

// A folded line, with the blanks at its start, counts as one space.
TEST_F(Words, OnTwoLinesOfASubjectJoin) {
  Start();
  const Object message = Parse("Subject: =?utf-8?Q?Caf=C3?=\n\t =?utf-8?Q?=A9?=\n\nText\n");
  EXPECT_EQ(ShowProperty(message, "Subject"), "0x8000100 Caf\xC3\xA9");
}

TEST_F(Words, LowerCaseLettersAreNotDecoded) {
  Start();
  ExpectDecoded("=?utf-8?q?a=20b?=", "0x8000100 a=20b");
  ExpectDecoded("=?utf-8?b?QWxhZGRpbg==?=", "0x8000100 QWxhZGRpbg==");
}

TEST_F(Words, TextAroundThemIsKept) {
  Start();
  ExpectDecoded("Re:  =?utf-8?Q?a?= and  =?utf-8?Q?b?=  end", "0x8000100 Re:  a and  b  end");
}

TEST_F(Words, OnlyOneSpaceBeforeAnEqualsSignIsDropped) {
  Start();
  ExpectDecoded("=?utf-8?Q?a?= =?utf-8?Q?b?=", "0x8000100 ab");
  ExpectDecoded("=?utf-8?Q?a?= =x", "0x8000100 a=x");
  ExpectDecoded("=?utf-8?Q?a?=  =?utf-8?Q?b?=", "0x8000100 a  b");
  ExpectDecoded("=?utf-8?Q?a?=\t=?utf-8?Q?b?=", "0x8000100 a\tb");
  ExpectDecoded("=?utf-8?Q?a?= x", "0x8000100 a x");
}

// All bytes are labelled with the charset named last.
TEST_F(Words, LastNamedCharsetWins) {
  Start();
  ExpectDecoded("=?ISO-8859-1?Q?=C3=A9?= =?UTF-8?Q?=C3=A8?=", "0x8000100 \xC3\xA9\xC3\xA8");
  ExpectDecoded("=?UTF-8?Q?=C3=A9?= =?ISO-8859-1?Q?=E8?=", "0x201 \xC3\xA9\xE8");
  ExpectDecoded("=?ISO-8859-1?Q?=E9?= =??Q?=E8?=", "0x201 \xE9\xE8");
}

TEST_F(Words, EmptyCharsetNameLeavesTheTextUnchanged) {
  Start();
  ExpectDecoded("x =??Q?a=20b?= y", "0x600 x =??Q?a=20b?= y");
}

TEST_F(Words, UnknownCharsetLeavesTheTextUnchanged) {
  Start();
  ExpectDecoded("=?x-none?Q?a=20b?= c", "0x600 =?x-none?Q?a=20b?= c");
  ExpectDecoded("\xC3\xA9 =?x-none?Q?a?=", "0x8000100 \xC3\xA9 =?x-none?Q?a?=");
}

// "binary" is in the table of charsets, but has no text encoding.
TEST_F(Words, CharsetWithoutEncodingRaisesWhenAskedTo) {
  Start();
  const String text = MakeString("=?binary?Q?a=20b?=");
  SetShared(kEmail, "RaiseUnknownFormatExceptions", true);
  EXPECT_EQ(RaisedBy([&] { DecodedInline(text); }),
            "UnsupportedFormatException, 0: Unhandled encoding: binary");
  SetShared(kEmail, "RaiseUnknownFormatExceptions", false);
  EXPECT_EQ(DecodedInline(text), "0x600 =?binary?Q?a=20b?=");
}

// One call raises twice, in the look-up of the name and in the decoder; the host delivers the first
// exception.
TEST_F(Words, UnknownCharsetRaisesWhenAskedTo) {
  const Session session({}, Exceptions::kMayBeLost);
  SetShared(kEmail, "RaiseUnknownFormatExceptions", true);
  EXPECT_THAT(RaisedBy([] { DecodedInline(MakeString("=?x-none?Q?a?=")); }),
              StartsWith("UnsupportedFormatException, 0: Unhandled "));
}

TEST_F(Words, RaisingLeavesTheUndecodedSubject) {
  const Session session({}, Exceptions::kMayBeLost);
  SetShared(kEmail, "RaiseUnknownFormatExceptions", true);
  const Constructed constructed =
      ConstructFromString("Subject: =?x-none?Q?a=20b?=\nContent-Type: text/plain\n\nText\n");
  EXPECT_THAT(constructed.raised, StartsWith("UnsupportedFormatException, 0: Unhandled "));
  EXPECT_EQ(ShowProperty(constructed.message, "Subject"), "0x600 =?x-none?Q?a=20b?=");
  EXPECT_EQ(SubjectDecoded(constructed.message), "0x600 =?x-none?Q?a=20b?=");
  EXPECT_EQ(ShowProperty(constructed.message, "PlainText"), "0x600 Text\n");
}

TEST_F(Words, NulThatOneDecodesToCutsTheText) {
  Start();
  ExpectDecoded("=?utf-8?Q?ab=00cd?= ef", "0x8000100 ab");
  ExpectDecoded("=?utf-8?B?YQBi?=", "0x8000100 a");  // a, NUL, b
  ExpectDecoded("=?utf-8?Q?=00cd?=", "nil");
}

TEST_F(Words, NulInTheTextEndsIt) {
  Start();
  const auto decoded = [](std::string_view text) { return DecodedInline(MakeString(text)); };
  using std::string_view_literals::operator""sv;
  EXPECT_EQ(decoded("abcdefg\0hij"sv), "0x600 abcdefg");
  EXPECT_EQ(decoded("=?utf-8?Q?ab\0cd?="sv), "0x8000100 ab");
  EXPECT_EQ(decoded("\0=?utf-8?Q?ab?="sv), "nil");
}

TEST_F(Words, OfALabelLoseTheQuotesAroundThem) {
  Start();
  const struct {
    const char* label;
    const char* decoded;
  } kRows[] = {
      {"\"=?utf-8?Q?Ren=C3=A9_Example?=\"", "0x8000100 Ren\xC3\xA9 Example"},
      {"=?utf-8?Q?=22Ren=C3=A9=22?=", "0x8000100 Ren\xC3\xA9"},
      {"\"Ada Example\"", "0x600 Ada Example"},
      {"\"Ada\"", "0x600 Ada"},  // too short to be decoded, but its quotes are removed
      {"\"=?x-none?Q?Ada?=\"", "0x600 =?x-none?Q?Ada?="},
  };
  for (const auto& row : kRows) {
    const std::string address = std::string(row.label) + " <ada@example.org>";
    EXPECT_EQ(ShowProperty(FromText("MimeMailboxZQV", address), "LabelDecoded"), row.decoded)
        << row.label;
    const Object header = ObjectOf(Get(Parse("From: " + address + "\n\nText\n"), "Header"));
    const Object from = ObjectOf(Call(ObjectOf(Get(header, "from")), "Mailboxes", 0));
    EXPECT_EQ(ShowProperty(from, "LabelDecoded"), row.decoded) << row.label;
  }
}

TEST_F(Words, OfAnyOtherTextKeepTheQuotesAroundThem) {
  Start();
  ExpectDecoded("\"=?utf-8?Q?Ren=C3=A9_Example?=\"", "0x8000100 \"Ren\xC3\xA9 Example\"");
  ExpectDecoded("\"Ada Example\"", "0x600 \"Ada Example\"");
}

// Text with a DEL or a form feed is not accepted as UTF-8.
TEST_F(Words, PlainHighBytesAreUtf8OrMacRoman) {
  Start();
  ExpectDecoded("Caf\xC3\xA9 at noon", "0x8000100 Caf\xC3\xA9 at noon");
  ExpectDecoded("Caf\x8E at noon", "0x0 Caf\x8E at noon");
  ExpectDecoded("Caf\x8E", "0x0 Caf\x8E");
  ExpectDecoded("Caf\xC3\xA9\x7F at noon", "0x0 Caf\xC3\xA9\x7F at noon");
  ExpectDecoded("Caf\xC3\xA9\f at noon", "0x0 Caf\xC3\xA9\f at noon");
  ExpectDecoded("Caf\f at noon\x7F", "0x600 Caf\f at noon\x7F");
}

// "4" without a second digit is 0x40, an "@"; without any digit the byte is a NUL.
TEST_F(Words, DigitsThatAreMissingCountAsZero) {
  Start();
  ExpectDecoded("=?utf-8?Q?a=4?=", "0x8000100 a@");
  ExpectDecoded("=?utf-8?Q?a=4", "0x8000100 a@");
  ExpectDecoded("=?utf-8?Q?a=?=", "0x8000100 a");
  ExpectDecoded("=?utf-8?Q?a=4zb?=", "0x8000100 a@b");
}

TEST_F(Words, WithoutAnEndExtendToTheEndOfTheText) {
  Start();
  ExpectDecoded("=?utf-8?Q?a_b", "0x8000100 a b");
  ExpectDecoded("=?utf-8?B?QWxhZGRpb", "0x8000100 Aladdi");  // the ninth character gives no byte
  ExpectDecoded("x =?utf-8", "0x8000100 x ");
}

// The string is converted to UTF-8 first; text around the words stays UTF-8.
TEST_F(Words, InHostStringsOfOtherEncodings) {
  Start();
  const struct {
    String text;
    const char* decoded;
  } kRows[] = {
      {MakeString("\xE9 =?utf-8?Q?=C3=A8?=", abi::kIsoLatin1), "0x8000100 \xC3\xA9 \xC3\xA8"},
      {MakeString("\xE9 =?ISO-8859-1?Q?=E8?=", abi::kIsoLatin1), "0x201 \xC3\xA9 \xE8"},
      {MakeString("\x8E", abi::kMacRoman), "0x8000100 \xC3\xA9"},
      {MakeString("=?utf-8?Q?=C3=A8?=", abi::kAscii), "0x8000100 \xC3\xA8"},
      {MakeString("\xC4\xC1", 0x0A02), "0x8000100 \xD0\xB4\xD0\xB0"},  // "da" in KOI8-R
      {MakeUtf16(u"\u00E9 =?utf-8?Q?=C3=A8?="), "0x8000100 \xC3\xA9 \xC3\xA8"},
      {MakeUtf16(u"=?ISO-8859-1?Q?a?="), "0x600 a"},
      {MakeUtf16(u"\u20AC"), "0x8000100 \xE2\x82\xAC"},
      {MakeString({"\0=\0?\0x", 6}, abi::kUtf16BigEndian), "0x600 =?x"},
      {MakeString({"\xE9\0\0\0", 4}, abi::kUtf32LittleEndian), "0x8000100 \xC3\xA9"},
  };
  for (const auto& row : kRows) {
    const std::string bytes(row.text.bytes());
    const abi::Encoding encoding = row.text.encoding();
    EXPECT_EQ(DecodedInline(row.text), row.decoded);
    EXPECT_EQ(row.text.bytes(), bytes) << "the application's string does not change";
    EXPECT_EQ(row.text.encoding(), encoding);
  }
}

// In Mac Roman 8E is an e with acute accent, C3 the square root, A9 the copyright sign.
TEST_F(Words, InHostStringsOfUnknownEncodingAreReadAsMacRoman) {
  Start();
  const auto decoded = [](const char* bytes) {
    return DecodedInline(MakeString(bytes, abi::kUnknownEncoding));
  };
  EXPECT_EQ(decoded("\x8E =?utf-8?Q?=C3=A8?="), "0x8000100 \xC3\xA9 \xC3\xA8");
  EXPECT_EQ(decoded("\xC3\xA9 =?utf-8?Q?x?="), "0x8000100 \xE2\x88\x9A\xC2\xA9 x");
  EXPECT_EQ(decoded("=?utf-8?Q?=C3=A8?="), "0x8000100 \xC3\xA8");
  EXPECT_EQ(decoded("x\x8E"), "0x8000100 x\xC3\xA9");
}

}  // namespace
}  // namespace zqv::interface_test
