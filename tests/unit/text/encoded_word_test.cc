#include "text/encoded_word.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/unicode.h"
#include "tests/reference/reference_encoded_word.h"
#include "tests/reference/reference_transfer.h"
#include "tests/support/property.h"
#include "tests/unit/base/log_capture.h"
#include "text/charset.h"

namespace zqv::text {
namespace {

using test::Logged;

std::string Shown(abi::Encoding encoding, std::string_view bytes) {
  char number[16];
  std::snprintf(number, sizeof number, "%08X ", encoding);
  return number + std::string(bytes);
}

// Shows the encoding in hexadecimal digits and the bytes; "empty" when there are no bytes.
std::string Show(const HeaderText& text) {
  return text.bytes().empty() ? "empty" : Shown(text.encoding(), text.bytes());
}

std::string Decoded(const std::string& text) { return Show(DecodeEncodedWords(text, false)); }
std::string Unquoted(const std::string& text) { return Show(DecodeEncodedWords(text, true)); }

std::string Ascii(const std::string& text) { return Shown(abi::kAscii, text); }
std::string Utf8(const std::string& text) { return Shown(abi::kUtf8, text); }
std::string Latin1(const std::string& text) { return Shown(abi::kIsoLatin1, text); }

TEST(EncodedWords, EmptyTextStaysEmpty) {
  EXPECT_EQ(Decoded(""), "empty");
  EXPECT_EQ(Unquoted(""), "empty");
}

TEST(EncodedWords, FewerThanSevenBytesAreNotDecoded) {
  EXPECT_EQ(Decoded("=?a?Q?"), Ascii("=?a?Q?"));
  EXPECT_EQ(Decoded("=?0?Qx"), Ascii("=?0?Qx"));
  EXPECT_EQ(Decoded("=?0?Q?x"), Latin1("x"));  // the shortest text that is decoded
}

TEST(EncodedWords, QInUtf8) { EXPECT_EQ(Decoded("=?utf-8?Q?Caf=C3=A9?="), Utf8("Caf\xC3\xA9")); }

TEST(EncodedWords, BAndQInLatin1JoinOverOneSpace) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?B?QWxhZGRpbg==?= =?ISO-8859-1?Q?_x?="), Latin1("Aladdin x"));
}

TEST(EncodedWords, LowerCaseLettersAreNotDecoded) {
  EXPECT_EQ(Decoded("=?utf-8?q?a=20b?="), Utf8("a=20b"));
  EXPECT_EQ(Decoded("=?utf-8?b?QWxhZGRpbg==?="), Utf8("QWxhZGRpbg=="));
}

TEST(EncodedWords, OtherLettersAreNotDecoded) {
  EXPECT_EQ(Decoded("=?utf-8?X?a=20b_?="), Utf8("a=20b_"));
}

TEST(EncodedWords, TextAroundWordsIsKept) {
  EXPECT_EQ(Decoded("Re:  =?utf-8?Q?a?= b  =?utf-8?Q?c?= "), Utf8("Re:  a b  c "));
}

TEST(EncodedWords, OnlyASingleSpaceBetweenWordsIsDropped) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a?= =?utf-8?Q?b?="), Utf8("ab"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=  =?utf-8?Q?b?="), Utf8("a  b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=\t=?utf-8?Q?b?="), Utf8("a\tb"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=\r\n =?utf-8?Q?b?="), Utf8("a\r\n b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?= =x"), Utf8("a=x"));   // no "?" is looked for
  EXPECT_EQ(Decoded("=?utf-8?Q?a?x =y"), Utf8("a =y"));  // not behind "?x"
}

TEST(EncodedWords, LastNamedCharsetWins) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=C3=A9?= =?UTF-8?Q?=C3=A8?="), Utf8("\xC3\xA9\xC3\xA8"));
  EXPECT_EQ(Decoded("=?UTF-8?Q?=C3=A8?= =?ISO-8859-1?Q?=E9?="), Latin1("\xC3\xA8\xE9"));
}

TEST(EncodedWords, EmptyCharsetNameLeavesTheLastOne) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=E9?= =??Q?=E8?="), Latin1("\xE9\xE8"));
}

TEST(EncodedWords, EmptyCharsetNameAloneLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("x =??Q?a=20b?= y"), Ascii("x =??Q?a=20b?= y"));
}

// The two reports about a text, separated by a comma: the name of an unknown charset, and the name
// of a charset that is known but has no text encoding.
std::string Reported(const std::string& text) {
  const HeaderText decoded = DecodeEncodedWords(text, false);
  return decoded.unknown_charset + "," + decoded.charset_without_encoding;
}

TEST(EncodedWords, UnknownCharsetLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("=?foo?Q?a=20b?="), Ascii("=?foo?Q?a=20b?="));
  EXPECT_EQ(Decoded("=?f-o?Q?a?= =?f-o?Q?\xE9?="),
            Shown(abi::kMacRoman, "=?f-o?Q?a?= =?f-o?Q?\xE9?="));
  EXPECT_EQ(Reported("=?f-o?Q?a?="), "f-o,f-o");
}

// The table of charsets has a row "binary" whose value is that of an unknown charset.
TEST(EncodedWords, CharsetWithoutEncodingLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("=?binary?Q?a=20b?="), Ascii("=?binary?Q?a=20b?="));
  EXPECT_EQ(Reported("=?binary?Q?a=20b?="), ",binary");
}

TEST(EncodedWords, KnownCharsetsAreNotReported) {
  EXPECT_EQ(Reported("=?utf-8?Q?a?="), ",");
  EXPECT_EQ(Reported("=?foo?Q?a?= =?utf-8?Q?a?="), ",") << "the last one counts";
  EXPECT_EQ(Reported("no word"), ",");
}

TEST(EncodedWords, NulThatAWordDecodesToCutsTheResult) {
  EXPECT_EQ(Decoded("=?utf-8?Q?ab=00cd?= ef"), Utf8("ab"));
  EXPECT_EQ(Decoded("=?utf-8?Q?=00cd?="), "empty");
}

TEST(EncodedWords, NulInTheTextEndsIt) {
  EXPECT_EQ(Decoded(std::string("=?utf-8?Q?ab\0cd?=", 17)), Utf8("ab"));
  EXPECT_EQ(Decoded(std::string("abcdefgh\0ij", 11)), Ascii("abcdefgh"));
  EXPECT_EQ(Decoded(std::string("abc\0=?utf-8?Q?x?=", 17)), Ascii("abc"));
  EXPECT_EQ(Decoded(std::string("\0=?utf-8?Q?x?=", 14)), "empty");
}

TEST(EncodedWords, QuotesGoFromWordsAndPlainNames) {
  EXPECT_EQ(Unquoted("\"=?utf-8?Q?John_Smith?=\""), Utf8("John Smith"));
  EXPECT_EQ(Unquoted("=?utf-8?Q?\"John\"?="), Utf8("John"));
  EXPECT_EQ(Unquoted("\"John Smith\""), Ascii("John Smith"));
  EXPECT_EQ(Unquoted("\"=?foo?Q?x?=\""), Ascii("=?foo?Q?x?="));
  EXPECT_EQ(Decoded("\"John Smith\""), Ascii("\"John Smith\""));
  EXPECT_EQ(Decoded("\"=?utf-8?Q?John_Smith?=\""), Utf8("\"John Smith\""));
}

TEST(EncodedWords, QuotesGoFromShortTextsToo) {
  EXPECT_EQ(Unquoted("\"Jo\""), Ascii("Jo"));
  EXPECT_EQ(Unquoted("  x"), Ascii("x"));
  EXPECT_EQ(Unquoted("   "), "empty");
  EXPECT_EQ(Unquoted("\"\""), Ascii("\"\""));
}

TEST(EncodedWords, PlainHighBytesAreUtf8OrMacRoman) {
  EXPECT_EQ(Decoded("Caf\xC3\xA9 x"), Utf8("Caf\xC3\xA9 x"));
  EXPECT_EQ(Decoded("Caf\x8E xy"), Shown(abi::kMacRoman, "Caf\x8E xy"));
  EXPECT_EQ(Decoded("\x8E"), Shown(abi::kMacRoman, "\x8E"));
  EXPECT_EQ(Decoded("Caf\xC3\xA9\f xy"), Shown(abi::kMacRoman, "Caf\xC3\xA9\f xy"));
}

TEST(EncodedWords, QDigitsThatAreMissingOrBadCountAsZero) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4"), Latin1("a@"));  // "4" and nothing: 0x40
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4?="), Latin1("a@"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=?="), Latin1("a"));  // the byte 0x00 ends the text
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4xb?="), Latin1("a@b"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=z1=E9?="), Latin1("\x01\xE9"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=e9=E9?="), Latin1("\xE9\xE9"));
}

TEST(EncodedWords, Base64SkipsOtherCharactersAndFlushesTheRest) {
  EXPECT_EQ(Decoded("=?utf-8?B?Q W!x-h*ZGRpbg?="), Utf8("Aladdin"));
  EXPECT_EQ(Decoded("=?utf-8?B?QWxhZA?="), Utf8("Alad"));
  EXPECT_EQ(Decoded("=?utf-8?B?QWxhZ?="), Utf8("Ala"));  // one leftover character gives no byte
  EXPECT_EQ(Decoded("=?utf-8?B?"
                    "?= x"),
            Utf8(" x"));
}

TEST(EncodedWords, ReadsWordsWithoutTheirEnd) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a b"), Utf8("a b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a b?"), Utf8("a b"));
  EXPECT_EQ(Decoded("=?utf-8?Q"), "empty");
  EXPECT_EQ(Decoded("=?utf-8?"), "empty");
  EXPECT_EQ(Decoded("=?utf-8"), "empty");
  EXPECT_EQ(Decoded("x =?utf-8"), Utf8("x "));
}

TEST(EncodedWords, AnyCharacterIsSwallowedBehindTheClosingMark) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a?bc"), Utf8("ac"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a? =?utf-8?Q?b?="), Utf8("ab"));
}

TEST(EncodedWords, TextMayStartDirectlyBehindTheLetter) {
  EXPECT_EQ(Decoded("=?utf-8?Qabc?= x"), Utf8("abc x"));
  EXPECT_EQ(Decoded("=?utf-8??abc?= x"), Utf8("abc x"));  // "?" in the place of the letter
}

TEST(EncodedWords, KeepsMarksThatFormNoWord) {
  EXPECT_EQ(Decoded("a = b =x ?= = ?"), Ascii("a = b =x ?= = ?"));
  EXPECT_EQ(Decoded("a = b =x ?= =?"), Ascii("a = b =x ?= =?"));  // the charset name is missing
}

TEST(EncodedWords, LogsUnknownAndUnhandledNames) {
  const test::LogCapture log;
  EXPECT_EQ(Decoded("=?us-ascii?Q?=E9?= =?us-ascii?Q?b?="), Ascii("\xE9"
                                                                  "b"));
  EXPECT_EQ(Decoded("=?binary?Q?a?="), Ascii("=?binary?Q?a?="));
  EXPECT_EQ(Decoded("=?x-y?Q?a?="), Ascii("=?x-y?Q?a?="));
  EXPECT_EQ(log.Text(),
            Logged({"Skip extra space",
                    "Error: text is not ascii \xE9"
                    "b",
                    "unhandled encoding binary", "unknown charset xy", "unhandled encoding x-y"}));
}

// Whether the line is written depends on all bytes; the line shows only the bytes before the NUL.
TEST(EncodedWords, BytesBehindANulCountForTheLogOfTextThatIsNotAscii) {
  const test::LogCapture log;
  EXPECT_EQ(Decoded("=?us-ascii?Q?ab=00=E9?="), Ascii("ab"));
  EXPECT_EQ(Decoded("=?us-ascii?Q?ab=00c?="), Ascii("ab"));
  EXPECT_EQ(Decoded("=?us-ascii?Q?=00=E9?="), "empty");
  EXPECT_EQ(log.Text(), Logged({"Error: text is not ascii ab"}));
}

TEST(LabelText, KeepsTheBytesAndLogsAsciiThatIsNot) {
  const test::LogCapture log;
  EXPECT_EQ(Show(LabelText("caf\xE9", abi::kAscii)), Ascii("caf\xE9"));
  EXPECT_EQ(Show(LabelText(std::string_view("ab\0\xE9", 4), abi::kAscii)), Ascii("ab"));
  EXPECT_EQ(Show(LabelText(std::string_view("\0\xE9", 2), abi::kAscii)), "empty");
  EXPECT_EQ(Show(LabelText("caf\xE9", abi::kIsoLatin1)), Latin1("caf\xE9"));
  EXPECT_EQ(Show(LabelText("=?utf-8?Q?a?=", abi::kUtf8)), Utf8("=?utf-8?Q?a?="));
  EXPECT_EQ(log.Text(),
            Logged({"Error: text is not ascii caf\xE9", "Error: text is not ascii ab"}));
}

TEST(DetectText, HasTheEncodingOfTheBytesBeforeTheNul) {
  EXPECT_EQ(Show(DetectText("=?utf-8?Q?a?=")), Ascii("=?utf-8?Q?a?="));
  EXPECT_EQ(Show(DetectText("\xC3\xA9")), Utf8("\xC3\xA9"));
  EXPECT_EQ(Show(DetectText("\xE9")), Shown(abi::kMacRoman, "\xE9"));
  EXPECT_EQ(Show(DetectText(std::string_view("a\0\xE9", 3))), Ascii("a"));
  EXPECT_EQ(Show(DetectText("")), "empty");
}

TEST(HeaderText, BorrowsWhatNeedsNoDecoding) {
  const std::string_view text = "a plain subject";
  EXPECT_EQ(DecodeEncodedWords(text, false).bytes().data(), text.data());
  EXPECT_EQ(DetectText(text).bytes().data(), text.data());
}

TEST(HeaderText, KeepsItsOwnBytesWhenItIsMoved) {
  HeaderText first = DecodeEncodedWords("=?utf-8?Q?short?=", false);
  const HeaderText second = std::move(first);
  EXPECT_EQ(Show(second), Utf8("short"));
}

TEST(EncodedWords, HighBytesInOtherCharsetsAreNoError) {
  const test::LogCapture log;
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=E9?="), Latin1("\xE9"));
  EXPECT_EQ(Decoded("=?UTF-8?Q?=C3=A9?="), Utf8("\xC3\xA9"));
  EXPECT_EQ(log.Text(), "");
}

// Text made of pieces of encoded words, most of them faulty.
std::string AnyHeaderText() {
  const std::vector<std::string> pieces = {"=?",
                                           "?",
                                           "?=",
                                           "= ",
                                           " =",
                                           "=",
                                           "?Q?",
                                           "?B?",
                                           "?q?",
                                           "?b?",
                                           "Q",
                                           "B",
                                           " ",
                                           "\t",
                                           "_",
                                           "=E9",
                                           "=C3=A9",
                                           "=00",
                                           "=4",
                                           "=zz",
                                           "utf-8",
                                           "iso-8859-1",
                                           "QWxhZGRpbg",
                                           "=Q==",
                                           "a",
                                           "\"",
                                           "'",
                                           "\xE9",
                                           "=?utf-8?Q?",
                                           "=?iso-8859-1?B?",
                                           "?= =?utf-8?Q?",
                                           "=?us-ascii?B?"};
  const auto chosen = *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces));
  std::string text;
  for (const std::string& piece : chosen) text += piece;
  return text;
}

// Shows a text as HeaderText would be shown, cut at its first NUL.
std::string ShownText(std::string bytes, abi::Encoding encoding) {
  bytes = bytes.c_str();
  return bytes.empty() ? "empty" : Shown(encoding, bytes);
}

TEST(EncodedWords, AgreeWithTheReference) {
  EXPECT_TRUE(test::Holds("the same text as the reference implementation", [&](bool unquote) {
    const std::string text = AnyHeaderText();
    auto words = reference::DecodeWords(text);
    abi::Encoding encoding = GetEncodingValue(words.charset);
    if (text.size() < 7 || words.charset.empty() || encoding == abi::kUnknownEncoding) {
      words.bytes = text;
      encoding = abi::kUnknownEncoding;
    }
    if (unquote) words.bytes = reference::StripQuotes(words.bytes);
    const std::string shown = words.bytes.c_str();
    if (encoding == abi::kUnknownEncoding) encoding = base::DetectEncoding(shown);
    RC_ASSERT(Show(DecodeEncodedWords(text, unquote)) == ShownText(words.bytes, encoding));
  }));
}

TEST(EncodedWords, Base64AgreesWithTheReference) {
  EXPECT_TRUE(test::Holds("the same bytes as the reference implementation", [&] {
    const std::string payload = *rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("ABCXYZabcxyz0189+/=|-_ \n\x80")));
    RC_ASSERT(Show(DecodeEncodedWords("=?utf-8?B?" + payload + "?=", false)) ==
              ShownText(reference::DecodeBase64(payload), abi::kUtf8));
  }));
}

}  // namespace
}  // namespace zqv::text
