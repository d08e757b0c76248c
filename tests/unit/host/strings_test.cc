#include "host/strings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/failing_memory.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using standin::Fault;
using test::Logged;
using test::Show;
using test::Shown;

using BuildUnicodeString = test::HostTest;

std::string Built(std::string_view bytes, abi::Encoding encoding) {
  return Show(BuildString(bytes, encoding));
}

std::string BuiltUtf32(const std::u32string& text) {
  return Show(
      REALBuildUnicodeString(text.data(), static_cast<std::int64_t>(4 * text.size()), abi::kUtf32));
}

std::string BuiltUtf16(const std::u16string& text) {
  return Show(
      REALBuildUnicodeString(text.data(), static_cast<std::int64_t>(2 * text.size()), abi::kUtf16));
}

TEST_F(BuildUnicodeString, NothingGivesNil) {
  Start();
  for (const abi::Encoding encoding : {abi::kUtf8, abi::kUtf16, abi::kUtf32, abi::kMacRoman}) {
    EXPECT_EQ(Show(REALBuildUnicodeString("a", 0, encoding)), "nil");
    EXPECT_EQ(Show(REALBuildUnicodeString("a", -1, encoding)), "nil");
    EXPECT_EQ(Show(REALBuildUnicodeString(nullptr, 4, encoding)), "nil");
  }
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(BuildUnicodeString, TwoGigabytesGiveNil) {
  Start();
  const test::LogCapture log;
  EXPECT_EQ(Show(REALBuildUnicodeString("a", std::int64_t{1} << 31, abi::kUtf8)), "nil");
  EXPECT_EQ(
      Show(REALBuildUnicodeString("a", std::numeric_limits<std::int64_t>::max(), abi::kUtf16)),
      "nil");
  EXPECT_EQ(log.Text(), Logged({"Count too big for REALBuildUnicodeString.",
                                "Count too big for REALBuildUnicodeString."}));
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(BuildUnicodeString, SingleByteTextOfAsciiOnlyIsAscii) {
  Start();
  for (const abi::Encoding encoding :
       {abi::kMacRoman, abi::kIsoLatin1, abi::kWindowsLatin1, abi::kUnknownEncoding}) {
    EXPECT_EQ(Built("plain\x7F", encoding), Shown(abi::kAscii, "plain\x7F"));
    EXPECT_EQ(Built("high\x80", encoding), Shown(encoding, "high\x80"));
  }
}

TEST_F(BuildUnicodeString, OtherEncodingsStay) {
  Start();
  const test::LogCapture log;
  EXPECT_EQ(Built("a", abi::kUtf8), Shown(abi::kUtf8, "a"));
  EXPECT_EQ(Built("\xE9", abi::kAscii), Shown(abi::kAscii, "\xE9"));
  EXPECT_EQ(log.Text(), "");
  EXPECT_EQ(Built("a", 0x0A02), Shown(0x0A02, "a"));
  EXPECT_EQ(log.Text(), Logged({"Unknown encoding in REALBuildUnicodeString 2562"}));
}

TEST_F(BuildUnicodeString, NulsAreKept) {
  Start();
  EXPECT_EQ(Built(std::string_view("a\0b", 3), abi::kUtf8),
            Shown(abi::kUtf8, std::string_view("a\0b", 3)));
}

TEST_F(BuildUnicodeString, OneCallFromVersion2012On) {
  StartVersion(2012.0);
  EXPECT_EQ(Built("\xC3\xA9", abi::kUtf8), Shown(abi::kUtf8, "\xC3\xA9"));
  EXPECT_EQ(host().CallCount("REALBuildStringWithEncoding"), 1u);
  EXPECT_EQ(host().CallCount("REALBuildString"), 0u);
}

TEST_F(BuildUnicodeString, TwoCallsBeforeVersion2012) {
  StartVersion(2011.99);
  EXPECT_EQ(Built("\xC3\xA9", abi::kUtf8), Shown(abi::kUtf8, "\xC3\xA9"));
  EXPECT_EQ(host().CallCount("REALBuildStringWithEncoding"), 0u);
  EXPECT_EQ(host().CallCount("REALBuildString"), 1u);
  EXPECT_EQ(host().CallCount("REALSetStringEncoding"), 1u);
}

TEST_F(BuildUnicodeString, Utf16BecomesUtf8) {
  for (const double version : {2024.1, 2012.0, 2011.0}) {
    StartVersion(version);
    EXPECT_EQ(BuiltUtf16(u"\u20AC\U0001F600"), Shown(abi::kUtf8, "\xE2\x82\xAC\xF0\x9F\x98\x80"));
    EXPECT_EQ(host().CallCount("REALConvertString"), 1u);
    EXPECT_EQ(host().CallCount("REALBuildStringWithEncoding"), version < 2012 ? 0u : 1u);
  }
}

TEST_F(BuildUnicodeString, Utf16ThatDoesNotConvertIsNil) {
  Start();
  EXPECT_EQ(BuiltUtf16({u'a', 0xD800}), "nil");
}

TEST_F(BuildUnicodeString, Utf16ThatCannotBeBuiltIsNil) {
  StartWithFault("REALBuildStringWithEncoding", {Fault::Kind::kNothing});
  const test::LogCapture log;
  EXPECT_EQ(BuiltUtf16(u"a"), "nil");
  EXPECT_EQ(log.Text(), Logged({"Out of memory in REALBuildUnicodeStringUTF16."}));
}

TEST_F(BuildUnicodeString, Utf32IsConvertedByTheHostFromVersion2013On) {
  StartVersion(2013.0);
  EXPECT_EQ(BuiltUtf32(U"a\U0001F600"), Shown(abi::kUtf8, "a\xF0\x9F\x98\x80"));
  EXPECT_EQ(host().CallCount("REALBuildStringWithEncoding"), 1u);
  EXPECT_EQ(host().CallCount("REALConvertString"), 1u);
}

// A copy of the bytes that the host was given last.
std::string g_given;
std::vector<abi::Encoding> g_given_encodings;
abi::REALstring KeepAndRefuse(const char* bytes, int length, std::uint32_t encoding) {
  g_given.assign(bytes, static_cast<std::size_t>(length));
  g_given_encodings.push_back(encoding);
  return nullptr;
}

std::u16string GivenUnits() {
  std::u16string units(g_given.size() / 2, u'\0');
  g_given.copy(reinterpret_cast<char*>(units.data()), g_given.size());
  return units;
}

TEST_F(BuildUnicodeString, Utf32IsGivenAsUtf16ToOlderHosts) {
  StartVersion(2012.99);
  Replace("REALBuildStringWithEncoding", &KeepAndRefuse);
  g_given_encodings.clear();
  EXPECT_EQ(BuiltUtf32({U'a', 0x1F600, 0xD800, 0xDFFF, 0x110000, 0xFFFF}), "nil");
  EXPECT_EQ(GivenUnits(), (std::u16string{u'a', 0xD83D, 0xDE00, 0xFFFD, 0xFFFF}));
  EXPECT_EQ(g_given_encodings, std::vector<abi::Encoding>{abi::kUtf16});
}

TEST_F(BuildUnicodeString, Utf32IsOfferedAsItIsToNewerHosts) {
  StartVersion(2013.0);
  Replace("REALBuildStringWithEncoding", &KeepAndRefuse);
  g_given_encodings.clear();
  EXPECT_EQ(BuiltUtf32(U"a"), "nil");
  EXPECT_EQ(g_given_encodings, (std::vector<abi::Encoding>{abi::kUtf32, abi::kUtf16}));
}

TEST_F(BuildUnicodeString, Utf32OnOlderHostsBecomesUtf8) {
  for (const double version : {2012.99, 2011.0}) {
    StartVersion(version);
    EXPECT_EQ(BuiltUtf32({0x1F600}), Shown(abi::kUtf8, "\xF0\x9F\x98\x80"));
    EXPECT_EQ(BuiltUtf32({U'a', 0xD800, U'b'}), Shown(abi::kUtf8, "ab"));
    EXPECT_EQ(BuiltUtf32({0x110000}), Shown(abi::kUtf8, "\xEF\xBF\xBD"));
    EXPECT_EQ(BuiltUtf32({0xD800}), "nil");
  }
}

TEST_F(BuildUnicodeString, Utf32OfAnyLengthOnOlderHosts) {
  StartVersion(2012.5);
  for (const std::size_t count : {1u, 198u, 199u, 200u, 201u, 5000u}) {
    std::string expected;
    for (std::size_t i = 0; i < count; ++i) expected += "\xF0\x9F\x98\x80";
    EXPECT_EQ(BuiltUtf32(std::u32string(count, U'\U0001F600')), Shown(abi::kUtf8, expected));
  }
}

TEST_F(BuildUnicodeString, Utf32ThatTheHostCannotConvertGoesTheOlderWay) {
  StartVersion(2024.1);
  EXPECT_EQ(BuiltUtf32({U'a', 0x110000, 0xD800, U'b'}), Shown(abi::kUtf8,
                                                              "a\xEF\xBF\xBD"
                                                              "b"));
}

TEST_F(BuildUnicodeString, Utf32WithoutMemoryIsNil) {
  StartVersion(2012.5);
  const std::u32string text(200, U'a');  // which takes 401 units of 2 bytes
  const test::LogCapture log;
  {
    const test::AllocationLimit limit(801);
    EXPECT_FALSE(REALBuildUnicodeString(text.data(), 800, abi::kUtf32));
  }
  EXPECT_EQ(log.Text(), Logged({"Out of memory in REALBuildUnicodeStringUTF32."}));
}

TEST_F(BuildUnicodeString, StandardExceptionOfTheHostIsRaised) {
  StartWithFault("REALBuildStringWithEncoding", {Fault::Kind::kThrows, 1, 1});
  EXPECT_EQ(Built("a", abi::kUtf8), "nil");
  EXPECT_EQ(TakeRaised(),
            "RuntimeException, 0: C++ Exception: fault of REALBuildStringWithEncoding");
}

TEST_F(BuildUnicodeString, OtherExceptionOfTheHostIsRaised) {
  StartWithFault("REALBuildStringWithEncoding", {Fault::Kind::kThrowsInt, 1, 1});
  const test::LogCapture log;
  EXPECT_EQ(Built("a", abi::kUtf8), "nil");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: Sorry, but there was an unnamed C++ Exception.");
  EXPECT_EQ(log.Text(), Logged({"Unnamed C++ Exception."}));
}

TEST_F(BuildUnicodeString, ExceptionInAConversionLeavesNothingBehind) {
  for (const double version : {2024.1, 2012.5}) {
    StartWithFault("REALConvertString", {Fault::Kind::kThrows}, version);
    EXPECT_EQ(BuiltUtf32(U"a"), "nil");
    EXPECT_EQ(BuiltUtf16(u"a"), "nil");
    EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of REALConvertString");
    EXPECT_EQ(host().ledger().Report(), "");
  }
}

TEST_F(BuildUnicodeString, MissingOperationsGiveNil) {
  StartWithout("REALBuildStringWithEncoding");
  EXPECT_EQ(Built("a", abi::kUtf8), "nil");
  EXPECT_EQ(BuiltUtf32(U"a"), "nil");
  StartWithout("REALBuildString", 2011.0);
  EXPECT_EQ(Built("a", abi::kUtf8), "nil");
  StartWithout("REALConvertString");
  EXPECT_EQ(BuiltUtf16(u"a"), "nil");
  EXPECT_EQ(BuiltUtf32(U"a"), "nil");
}

TEST_F(BuildUnicodeString, WithoutRelabellingOlderHostsKeepTheirOwnLabel) {
  StartWithout("REALSetStringEncoding", 2011.0);
  EXPECT_EQ(Built("a", abi::kUtf8), Shown(abi::kUnknownEncoding, "a"));
}

using DetectedString = test::HostTest;

TEST_F(DetectedString, NothingGivesNil) {
  Start();
  EXPECT_EQ(Show(CString2RB_detect_encoding(nullptr)), "nil");
  EXPECT_EQ(Show(CString2RB_detect_encoding("")), "nil");
  EXPECT_EQ(Show(BuildDetectedString({})), "nil");
}

TEST_F(DetectedString, IsAsciiUtf8OrElseMacRoman) {
  Start();
  for (const auto& [text, encoding] :
       std::vector<std::pair<const char*, abi::Encoding>>{{"abc\f", abi::kAscii},
                                                          {"Caf\xC3\xA9", abi::kUtf8},
                                                          {"Caf\x8E", abi::kMacRoman},
                                                          {"Caf\xC3\xA9\f", abi::kMacRoman},
                                                          {"Caf\xC3\xA9\x7F", abi::kMacRoman}}) {
    EXPECT_EQ(Show(CString2RB_detect_encoding(text)), Shown(encoding, text));
    EXPECT_EQ(Show(BuildDetectedString(text)), Shown(encoding, text));
  }
}

TEST_F(DetectedString, CStringEndsAtItsNulAndAViewDoesNot) {
  Start();
  EXPECT_EQ(Show(CString2RB_detect_encoding("ab\0c")), Shown(abi::kAscii, "ab"));
  for (const std::string& text : {std::string("ab\0\xFF", 4), std::string("ab")})
    EXPECT_EQ(Show(BuildDetectedText(text)), Shown(abi::kAscii, "ab"));
  EXPECT_EQ(Show(BuildDetectedText({"\xC3\xA9\0\xFF", 4})), Shown(abi::kUtf8, "\xC3\xA9"));
  EXPECT_EQ(Show(BuildDetectedText({"\0ab", 3})), "nil");
  const std::string_view view("ab\0c", 4);
  EXPECT_EQ(Show(BuildDetectedString(view)), Shown(abi::kAscii, view));
}

}  // namespace
}  // namespace zqv::host
