#include "objects/words.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "objects/switches.h"
#include "standin/application.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::objects {
namespace {

using test::Logged;
using test::Shown;

// Encoded words as host strings; text/encoded_word_test.cc tests the decoding itself.
class HostWords : public test::HostTest {
 protected:
  ~HostWords() override { setRaiseUnknownFormatExceptions(0); }
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

TEST_F(HostWords, AreHostStringsInTheirEncoding) {
  EXPECT_EQ(Decoded("=?utf-8?Q?Caf=C3=A9?="), Utf8("Caf\xC3\xA9"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?=E9?="), Shown(abi::kIsoLatin1, "\xE9"));
  EXPECT_EQ(Decoded("plain"), Ascii("plain"));
}

TEST_F(HostWords, InASingleByteCharsetAreAsciiWhenTheyCanBe) {
  EXPECT_EQ(Decoded("=?ISO-8859-1?B?QWxhZGRpbg==?= =?ISO-8859-1?Q?_x?="), Ascii("Aladdin x"));
  EXPECT_EQ(Decoded("=?0?Q?x"), Ascii("x"));
  EXPECT_EQ(Decoded("=?ISO-8859-1?Q?a=4?="), Ascii("a@"));
}

TEST_F(HostWords, EmptyTextIsNil) {
  EXPECT_EQ(Decoded(""), "nil");
  EXPECT_EQ(Unquoted(""), "nil");
  EXPECT_EQ(Unquoted("   "), "nil");
  EXPECT_EQ(Decoded("=?utf-8?Q"), "nil");
}

TEST_F(HostWords, NothingBeforeANulIsNil) {
  EXPECT_EQ(Decoded("=?utf-8?Q?=00cd?="), "nil");
  EXPECT_EQ(Decoded(std::string("\0=?utf-8?Q?x?=", 14)), "nil");
  EXPECT_EQ(Decoded("=?utf-8?Q?ab=00cd?= ef"), Utf8("ab"));
}

TEST_F(HostWords, LoseTheirQuotesWhenAskedTo) {
  EXPECT_EQ(Unquoted("\"=?utf-8?Q?John_Smith?=\""), Utf8("John Smith"));
  EXPECT_EQ(Decoded("\"John Smith\""), Ascii("\"John Smith\""));
}

TEST_F(HostWords, UnknownCharsetLeavesTheTextUnchanged) {
  EXPECT_EQ(Decoded("=?foo?Q?a=20b?="), Ascii("=?foo?Q?a=20b?="));
  EXPECT_EQ(TakeRaised(), "");
}

// The unknown charset raises first. A second exception does not replace one that is pending.
TEST_F(HostWords, UnknownCharsetRaisesWhenAskedTo) {
  setRaiseUnknownFormatExceptions(1);
  EXPECT_EQ(Decoded("=?f-o?Q?a?="), Ascii("=?f-o?Q?a?="));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: f-o");
  EXPECT_EQ(host().DroppedExceptions(), 1u);
  EXPECT_EQ(host().CallCount("RuntimeRaiseException"), 2u);
}

// The table of charsets has a row "binary" whose value is that of an unknown charset.
TEST_F(HostWords, CharsetWithoutEncodingRaisesWhenAskedTo) {
  setRaiseUnknownFormatExceptions(1);
  EXPECT_EQ(Decoded("=?binary?Q?a=20b?="), Ascii("=?binary?Q?a=20b?="));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled encoding: binary");
  EXPECT_EQ(host().CallCount("RuntimeRaiseException"), 1u);
}

TEST_F(HostWords, KnownCharsetRaisesNothing) {
  setRaiseUnknownFormatExceptions(1);
  EXPECT_EQ(Decoded("=?utf-8?Q?a?="), Utf8("a"));
  EXPECT_EQ(Decoded("plain"), Ascii("plain"));
}

TEST_F(HostWords, CharsetIsReportedOnlyWhenAskedTo) {
  ReportUnknownCharset("f-o o");
  EXPECT_EQ(TakeRaised(), "");
  setRaiseUnknownFormatExceptions(1);
  ReportUnknownCharset("");
  EXPECT_EQ(TakeRaised(), "");
  ReportUnknownCharset("f-o o");
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: f-o o");
}

TEST_F(HostWords, HostStringsAreReadAsUtf8) {
  const auto decoded = [](const standin::String& text) {
    return test::Show(host::StringRef::Adopt(DecodeInline(text.raw())));
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

using HtmlToHostText = test::HostTest;

std::string HostText(const standin::String& html) {
  return test::Show(host::StringRef::Adopt(HTMLToPlainText(html.raw())));
}

TEST_F(HtmlToHostText, NilAndEmptyGiveNil) {
  Start();
  EXPECT_EQ(HostText(standin::String()), "nil");
  EXPECT_EQ(HostText(standin::MakeEmptyString(abi::kUtf8)), "nil");
}

TEST_F(HtmlToHostText, OnlyTagsGiveNil) {
  Start();
  EXPECT_EQ(HostText(standin::MakeString("<html><body></body></html>")), "nil");
}

TEST_F(HtmlToHostText, TextIsUtf8) {
  for (const double version : {2024.1, 2012.5, 2011.0}) {
    StartVersion(version);
    EXPECT_EQ(HostText(standin::MakeString("<b>Caf\xC3\xA9</b> &euro;")),
              test::Shown(abi::kUtf8, "Caf\xC3\xA9 \xE2\x82\xAC"));
    EXPECT_EQ(HostText(standin::MakeString("\x8E<br>x", abi::kMacRoman)),
              test::Shown(abi::kUtf8, "\xC3\xA9\rx"));
  }
}

TEST_F(HtmlToHostText, CodePointsThatUnicodeLacksAreReplacedOrDropped) {
  for (const double version : {2024.1, 2012.5}) {
    StartVersion(version);
    EXPECT_EQ(HostText(standin::MakeString("a&#1114112;b&#xD800;c")), test::Shown(abi::kUtf8,
                                                                                  "a\xEF\xBF\xBD"
                                                                                  "bc"));
  }
}

TEST_F(HtmlToHostText, LogsCommentsAndSizes) {
  Start();
  const auto html = standin::MakeString("a<!-- x -->b<!--");
  const test::LogCapture log;
  EXPECT_EQ(HostText(html), test::Shown(abi::kUtf8, "ab"));
  EXPECT_EQ(log.Text(), Logged({"start of comment found 2", "end of comment found 8",
                                "start of comment found 13", "output.size 2", "dlen 2"}));
}

TEST_F(HtmlToHostText, LogsTheSizeOfNothing) {
  Start();
  const auto html = standin::MakeString("<p");
  const auto tag = standin::MakeString("<b>");
  const test::LogCapture log;
  EXPECT_EQ(HostText(tag), "nil");
  EXPECT_EQ(HostText(standin::String()), "nil");
  EXPECT_EQ(log.Text(), Logged({"output.size 0"}));
}

}  // namespace
}  // namespace zqv::objects
