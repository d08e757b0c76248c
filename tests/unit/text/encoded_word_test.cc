#include "text/encoded_word.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <vector>

#include "base/unicode.h"
#include "standin/application.h"
#include "tests/reference/encoded_word_twin.h"
#include "tests/reference/transfer_twin.h"
#include "tests/unit/host/host_fixture.h"
#include "tests/unit/host/log_capture.h"
#include "tests/unit/host/property.h"
#include "text/charset.h"

namespace zqv::text {
namespace {

using test::Logged;
using test::Shown;

constexpr abi::Encoding kLatin1 = abi::kIsoLatin1;

// Decodes in a host of a recent version; results show their encoding and bytes.
class EncodedWords : public test::HostTest {
 protected:
  ~EncodedWords() override { RaiseUnknownFormatExceptions = false; }
  void SetUp() override { Start(); }

  static std::string Decoded(const std::string& text) {
    return test::Show(DecodeInlineEncodings(text, false));
  }
  static std::string Unquoted(const std::string& text) {
    return test::Show(DecodeInlineEncodings(text, true));
  }
};

std::string Ascii(const std::string& text) { return Shown(abi::kAscii, text); }
std::string Utf8(const std::string& text) { return Shown(abi::kUtf8, text); }
std::string Latin1(const std::string& text) { return Shown(kLatin1, text); }

TEST_F(EncodedWords, EmptyTextIsNil) {
  EXPECT_EQ(Decoded(""), "nil");
  EXPECT_EQ(Unquoted(""), "nil");
}

TEST_F(EncodedWords, FewerThanSevenBytesAreNotDecoded) {
  EXPECT_EQ(Decoded("=?a?Q?"), Ascii("=?a?Q?"));
  EXPECT_EQ(Decoded("=?0?Qx"), Ascii("=?0?Qx"));
  EXPECT_EQ(Decoded("=?0?Q?x"), Ascii("x"));  // seven
}

TEST_F(EncodedWords, QInUtf8) { EXPECT_EQ(Decoded("=?utf-8?Q?Caf=C3=A9?="), Utf8("Caf\xC3\xA9")); }

TEST_F(EncodedWords, BAndQInLatin1JoinOverOneSpace) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?B?QWxhZGRpbg==?= =?ISO-8859-1?Q?_x?="), Ascii("Aladdin x"));
}

TEST_F(EncodedWords, LowerCaseLettersAreNotDecoded) {
  EXPECT_EQ(Decoded("=?utf-8?q?a=20b?="), Utf8("a=20b"));
  EXPECT_EQ(Decoded("=?utf-8?b?QWxhZGRpbg==?="), Utf8("QWxhZGRpbg=="));
}

TEST_F(EncodedWords, OtherLettersAreNotDecoded) {
  EXPECT_EQ(Decoded("=?utf-8?X?a=20b_?="), Utf8("a=20b_"));
}

TEST_F(EncodedWords, TextAroundWordsIsKept) {
  EXPECT_EQ(Decoded("Re:  =?utf-8?Q?a?= b  =?utf-8?Q?c?= "), Utf8("Re:  a b  c "));
}

TEST_F(EncodedWords, OnlyASingleSpaceBetweenWordsIsDropped) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a?= =?utf-8?Q?b?="), Utf8("ab"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=  =?utf-8?Q?b?="), Utf8("a  b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=\t=?utf-8?Q?b?="), Utf8("a\tb"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?=\r\n =?utf-8?Q?b?="), Utf8("a\r\n b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a?= =x"), Utf8("a=x"));   // no "?" is looked for
  EXPECT_EQ(Decoded("=?utf-8?Q?a?x =y"), Utf8("a =y"));  // not behind "?x"
}

TEST_F(EncodedWords, LastNamedCharsetWins) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=C3=A9?= =?UTF-8?Q?=C3=A8?="), Utf8("\xC3\xA9\xC3\xA8"));
  EXPECT_EQ(Decoded("=?UTF-8?Q?=C3=A8?= =?ISO-8859-1?Q?=E9?="), Latin1("\xC3\xA8\xE9"));
}

TEST_F(EncodedWords, EmptyCharsetNameLeavesTheLastOne) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=E9?= =??Q?=E8?="), Latin1("\xE9\xE8"));
}

TEST_F(EncodedWords, EmptyCharsetNameAloneLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("x =??Q?a=20b?= y"), Ascii("x =??Q?a=20b?= y"));
}

TEST_F(EncodedWords, UnknownCharsetLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("=?foo?Q?a=20b?="), Ascii("=?foo?Q?a=20b?="));
  EXPECT_EQ(TakeRaised(), "");
}

// The charset table raises first, and the first exception is the one that stays pending.
TEST_F(EncodedWords, UnknownCharsetRaisesWhenAskedTo) {
  RaiseUnknownFormatExceptions = true;
  EXPECT_EQ(Decoded("=?f-o?Q?a?="), Ascii("=?f-o?Q?a?="));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: f-o");
  EXPECT_EQ(host().DroppedExceptions(), 1u);
  EXPECT_EQ(host().CallCount("RuntimeRaiseException"), 2u);
}

// "binary" is in the table with the value of an unknown charset, so only the decoder raises.
TEST_F(EncodedWords, UnhandledEncodingRaisesWhenAskedTo) {
  RaiseUnknownFormatExceptions = true;
  EXPECT_EQ(Decoded("=?binary?Q?a=20b?="), Ascii("=?binary?Q?a=20b?="));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled encoding: binary");
}

TEST_F(EncodedWords, NulThatAWordDecodesToCutsTheResult) {
  EXPECT_EQ(Decoded("=?utf-8?Q?ab=00cd?= ef"), Utf8("ab"));
  EXPECT_EQ(Decoded("=?utf-8?Q?=00cd?="), "nil");
}

TEST_F(EncodedWords, NulInTheTextEndsIt) {
  EXPECT_EQ(Decoded(std::string("=?utf-8?Q?ab\0cd?=", 17)), Utf8("ab"));
  EXPECT_EQ(Decoded(std::string("abcdefgh\0ij", 11)), Ascii("abcdefgh"));
  EXPECT_EQ(Decoded(std::string("abc\0=?utf-8?Q?x?=", 17)), Ascii("abc"));
  EXPECT_EQ(Decoded(std::string("\0=?utf-8?Q?x?=", 14)), "nil");
}

TEST_F(EncodedWords, QuotesGoFromWordsAndPlainNames) {
  EXPECT_EQ(Unquoted("\"=?utf-8?Q?John_Smith?=\""), Utf8("John Smith"));
  EXPECT_EQ(Unquoted("=?utf-8?Q?\"John\"?="), Utf8("John"));
  EXPECT_EQ(Unquoted("\"John Smith\""), Ascii("John Smith"));
  EXPECT_EQ(Unquoted("\"=?foo?Q?x?=\""), Ascii("=?foo?Q?x?="));
  EXPECT_EQ(Decoded("\"John Smith\""), Ascii("\"John Smith\""));
  EXPECT_EQ(Decoded("\"=?utf-8?Q?John_Smith?=\""), Utf8("\"John Smith\""));
}

TEST_F(EncodedWords, QuotesGoFromShortTextsToo) {
  EXPECT_EQ(Unquoted("\"Jo\""), Ascii("Jo"));
  EXPECT_EQ(Unquoted("  x"), Ascii("x"));
  EXPECT_EQ(Unquoted("   "), "nil");
  EXPECT_EQ(Unquoted("\"\""), Ascii("\"\""));
}

TEST_F(EncodedWords, PlainHighBytesAreUtf8OrMacRoman) {
  EXPECT_EQ(Decoded("Caf\xC3\xA9 x"), Utf8("Caf\xC3\xA9 x"));
  EXPECT_EQ(Decoded("Caf\x8E xy"), Shown(abi::kMacRoman, "Caf\x8E xy"));
  EXPECT_EQ(Decoded("\x8E"), Shown(abi::kMacRoman, "\x8E"));
  EXPECT_EQ(Decoded("Caf\xC3\xA9\f xy"), Shown(abi::kMacRoman, "Caf\xC3\xA9\f xy"));
}

TEST_F(EncodedWords, QDigitsThatAreMissingOrBadCountAsZero) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4"), Ascii("a@"));  // "4" and nothing: 0x40
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4?="), Ascii("a@"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=?="), Ascii("a"));  // 0x00 cuts
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4xb?="), Ascii("a@b"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=z1=E9?="), Latin1("\x01\xE9"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=e9=E9?="), Latin1("\xE9\xE9"));
}

TEST_F(EncodedWords, Base64SkipsStrangersAndFlushesTheRest) {
  EXPECT_EQ(Decoded("=?utf-8?B?Q W!x-h*ZGRpbg?="), Utf8("Aladdin"));
  EXPECT_EQ(Decoded("=?utf-8?B?QWxhZA?="), Utf8("Alad"));
  EXPECT_EQ(Decoded("=?utf-8?B?QWxhZ?="), Utf8("Ala"));  // a single one is no byte
  EXPECT_EQ(Decoded("=?utf-8?B?"
                    "?= x"),
            Utf8(" x"));
}

TEST_F(EncodedWords, EndsThatAreMissing) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a b"), Utf8("a b"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a b?"), Utf8("a b"));
  EXPECT_EQ(Decoded("=?utf-8?Q"), "nil");
  EXPECT_EQ(Decoded("=?utf-8?"), "nil");
  EXPECT_EQ(Decoded("=?utf-8"), "nil");
  EXPECT_EQ(Decoded("x =?utf-8"), Utf8("x "));
}

TEST_F(EncodedWords, AnyCharacterIsSwallowedBehindTheClosingMark) {
  EXPECT_EQ(Decoded("=?utf-8?Q?a?bc"), Utf8("ac"));
  EXPECT_EQ(Decoded("=?utf-8?Q?a? =?utf-8?Q?b?="), Utf8("ab"));
}

TEST_F(EncodedWords, TextMayStartDirectlyBehindTheLetter) {
  EXPECT_EQ(Decoded("=?utf-8?Qabc?= x"), Utf8("abc x"));
  EXPECT_EQ(Decoded("=?utf-8??abc?= x"), Utf8("abc x"));  // "?" in the place of the letter
}

TEST_F(EncodedWords, MarksThatAreNoWord) {
  EXPECT_EQ(Decoded("a = b =x ?= = ?"), Ascii("a = b =x ?= = ?"));
  EXPECT_EQ(Decoded("a = b =x ?= =?"), Ascii("a = b =x ?= =?"));  // one that names no charset
}

TEST_F(EncodedWords, LogsWhatItMeets) {
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

TEST_F(EncodedWords, HighBytesInOtherCharsetsAreNoError) {
  const test::LogCapture log;
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=E9?="), Latin1("\xE9"));
  EXPECT_EQ(Decoded("=?UTF-8?Q?=C3=A9?="), Utf8("\xC3\xA9"));
  EXPECT_EQ(log.Text(), "");
}

// Pieces of words, so that random texts are mostly words with faults.
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

// What the host string must be for bytes that the twin decoded.
std::string ShownText(std::string bytes, abi::Encoding encoding) {
  bytes = bytes.c_str();
  if (bytes.empty()) return "nil";
  if (encoding == kLatin1 && base::IsAscii(bytes)) encoding = abi::kAscii;
  return Shown(encoding, bytes);
}

TEST_F(EncodedWords, AgreeWithTheirTwin) {
  EXPECT_TRUE(test::Holds("the same text as the twin", [&](bool unquote) {
    const std::string text = AnyHeaderText();
    auto words = reference::DecodeWords(text);
    abi::Encoding encoding = GetEncodingValue(words.charset);
    if (text.size() < 7 || words.charset.empty() || encoding == abi::kUnknownEncoding) {
      words.bytes = text;
      encoding = abi::kUnknownEncoding;
    }
    if (unquote) words.bytes = reference::StripQuotes(words.bytes);
    if (encoding == abi::kUnknownEncoding) encoding = base::DetectEncoding(words.bytes);
    RC_ASSERT(test::Show(DecodeInlineEncodings(text, unquote)) == ShownText(words.bytes, encoding));
  }));
}

TEST_F(EncodedWords, Base64AgreesWithItsTwin) {
  EXPECT_TRUE(test::Holds("the same bytes as the twin", [&] {
    const std::string payload = *rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("ABCXYZabcxyz0189+/=|-_ \n\x80")));
    RC_ASSERT(test::Show(DecodeInlineEncodings("=?utf-8?B?" + payload + "?=", false)) ==
              ShownText(reference::DecodeBase64(payload), abi::kUtf8));
  }));
}

TEST_F(EncodedWords, HostStringsAreReadAsUtf8) {
  const auto decoded = [](const standin::String& text) {
    return test::Show(DecodeInline(text.raw()));
  };
  EXPECT_EQ(decoded(standin::String()), "nil");
  EXPECT_EQ(decoded(standin::MakeEmptyString(abi::kUtf8)), "nil");
  EXPECT_EQ(decoded(standin::MakeString("=?utf-8?Q?Caf=C3=A9?=", abi::kAscii)),
            Utf8("Caf\xC3\xA9"));
  EXPECT_EQ(decoded(standin::MakeString("Caf\x8E =?utf-8?Q?x?=", abi::kMacRoman)),
            Utf8("Caf\xC3\xA9 x"));
  EXPECT_EQ(decoded(standin::MakeString(std::string("abcdefg\0hij", 11), abi::kUtf8)),
            Ascii("abcdefg"));
  EXPECT_EQ(decoded(standin::MakeString("\"quoted\"", abi::kUtf8)), Ascii("\"quoted\""));
}

}  // namespace
}  // namespace zqv::text
