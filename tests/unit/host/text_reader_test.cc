#include "host/text_reader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "standin/application.h"
#include "standin/convert.h"
#include "tests/support/alone.h"
#include "tests/support/failing_memory.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using standin::Fault;
using standin::MakeString;
using standin::StringDataFlavour;
using test::Logged;

constexpr char kReadFailed[] = "REALGetStringData failed.";
constexpr char kNotTerminated[] = "String is not zero terminated. Fixed.";
constexpr char kTo16[] = "Try UTF8 to UTF16 conversion...";
constexpr char kFrom16[] = "Try UTF16 to UTF32 conversion...";
constexpr char kTo32[] = "Try UTF8 to UTF32 conversion...";

// "Caf\u00E9 \U0001F600" in UTF-8 and UTF-32, and its first word in Mac Roman.
constexpr char kCafe8[] = "Caf\xC3\xA9 \xF0\x9F\x98\x80";
constexpr char32_t kCafe32[] = U"Caf\u00E9 \U0001F600";
constexpr char kCafeMac[] = "Caf\x8E";

class TextReader : public test::HostTest {
 protected:
  standin::Host& StartLending(StringDataFlavour flavour) {
    standin::Capabilities capabilities;
    capabilities.string_data = flavour;
    return Start(capabilities);
  }

  static standin::String In(abi::Encoding encoding, std::string_view utf8) {
    return MakeString(standin::Convert(utf8, abi::kUtf8, encoding).value(), encoding);
  }
  static standin::String Utf32String(const std::u32string& text) {
    const std::string_view bytes(reinterpret_cast<const char*>(text.data()), 4 * text.size());
    return MakeString(bytes, abi::kUtf32);
  }
};

TEST_F(TextReader, NilIsAnEmptyText) {
  Start();
  rbText text(nullptr);
  EXPECT_EQ(text.Utf8(), "");
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_NE(text.Utf8().data(), nullptr);
  EXPECT_NE(text.Utf32().data(), nullptr);
  EXPECT_TRUE(text.CheckASCII());
  text.ConvertUTF8();
  text.ConvertUTF32();
  text.ConvertUTF32_viaUTF16();
  EXPECT_EQ(text.Utf8(), "");
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_EQ(text.encoding(), abi::kAscii);
  EXPECT_FALSE(text.flagged());
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(TextReader, EmptyStringIsAnEmptyText) {
  Start();
  for (const abi::Encoding encoding :
       {abi::kUtf8, abi::kAscii, abi::kMacRoman, abi::kUtf16, abi::kUtf32, abi::kUnknownEncoding}) {
    const auto string = standin::MakeEmptyString(encoding);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8(), "");
    EXPECT_EQ(text.Utf32(), U"");
    EXPECT_FALSE(text.flagged());
  }
}

TEST_F(TextReader, Utf8AndAsciiAreNotCopied) {
  Start();
  for (const abi::Encoding encoding : {abi::kUtf8, abi::kAscii}) {
    for (const char* bytes : {"plain", kCafe8}) {
      const auto string = MakeString(bytes, encoding);
      rbText text(string.raw());
      EXPECT_EQ(text.Utf8().data(), string.bytes().data());
      EXPECT_EQ(text.Utf8(), bytes);
      EXPECT_EQ(text.encoding(), encoding);
    }
  }
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 0u);
}

TEST_F(TextReader, PlainTextInASingleByteEncodingIsNotCopied) {
  Start();
  for (const abi::Encoding encoding : {abi::kMacRoman, abi::kIsoLatin1, abi::kUnknownEncoding}) {
    const auto string = MakeString("plain", encoding);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8().data(), string.bytes().data());
    EXPECT_EQ(text.Utf32(), U"plain");
  }
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 0u);
}

TEST_F(TextReader, EveryEncodingIsReadAsUtf8AndUtf32) {
  Start();
  for (const abi::Encoding encoding :
       {abi::kUtf8, abi::kUtf16, abi::kUtf16BigEndian, abi::kUtf16LittleEndian, abi::kUtf32,
        abi::kUtf32BigEndian, abi::kUtf32LittleEndian}) {
    const auto string = In(encoding, kCafe8);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8(), kCafe8) << encoding;
    EXPECT_EQ(text.Utf32(), kCafe32) << encoding;
    EXPECT_FALSE(text.flagged());
    // A text without a byte above 0x7F, which in these encodings still has to be converted.
    const auto plain = In(encoding, "plain");
    EXPECT_EQ(rbText(plain.raw()).Utf8(), "plain") << encoding;
    EXPECT_EQ(rbText(plain.raw()).Utf32(), U"plain") << encoding;
  }
}

TEST_F(TextReader, SingleByteTextIsConverted) {
  Start();
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  rbText text(string.raw());
  EXPECT_EQ(text.encoding(), abi::kMacRoman);
  EXPECT_EQ(text.Utf8(), "Caf\xC3\xA9");
  EXPECT_EQ(text.Utf32(), U"Caf\u00E9");
  EXPECT_FALSE(text.CheckASCII());
}

TEST_F(TextReader, DetectsAscii) {
  Start();
  const auto plain = MakeString("plain\x7F", abi::kUtf8);
  EXPECT_TRUE(rbText(plain.raw()).CheckASCII());
  const auto high = MakeString(kCafe8, abi::kUtf8);
  rbText text(high.raw());
  EXPECT_FALSE(text.CheckASCII());
  EXPECT_FALSE(text.CheckASCII());
  const auto wide = In(abi::kUtf16, "plain");
  EXPECT_FALSE(rbText(wide.raw()).CheckASCII());
}

TEST_F(TextReader, ConvertUtf8AsksTheHostForWhatIsNotAscii) {
  Start();
  const auto string = MakeString(kCafe8, abi::kUtf8);
  rbText text(string.raw());
  text.ConvertUTF8();
  EXPECT_EQ(text.Utf8(), kCafe8);
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 1u);
  const auto plain = MakeString("plain", abi::kUtf8);
  rbText plain_text(plain.raw());
  plain_text.ConvertUTF8();
  EXPECT_EQ(plain_text.Utf8().data(), plain.bytes().data());
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 1u);
}

TEST_F(TextReader, HoldsTheString) {
  Start();
  const auto string = MakeString("x");
  {
    rbText text(string.raw());
    EXPECT_EQ(string.locks(), 2);
  }
  EXPECT_EQ(string.locks(), 1);
}

TEST_F(TextReader, UnknownEncodingIsReadAsMacRoman) {
  Start();
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  {
    rbText text(string.raw());
    EXPECT_EQ(text.encoding(), abi::kMacRoman);
    EXPECT_TRUE(text.flagged());
    EXPECT_EQ(string.locks(), 1);  // held by `string` only: the reader holds a converted copy
    EXPECT_EQ(text.Utf8(), "Caf\xC3\xA9");
    EXPECT_EQ(text.Utf32(), U"Caf\u00E9");
  }
  EXPECT_EQ(string.locks(), 1);
}

// Once a text of unknown encoding could not be rebuilt, the reader converts by way of UTF-16.
TEST_F(TextReader, UnknownEncodingIsReadThroughUtf16) {
  if (!test::IsAlone()) return;
  Start();
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"Caf\u00E9");
  EXPECT_EQ(log.Text(), Logged({"REALBuildUnicodeString failed", kTo16, kFrom16}));
}

TEST_F(TextReader, LogsOnceThatTheRebuildFailed) {
  if (!test::IsAlone()) return;
  Start();
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  const test::LogCapture log;
  const rbText first(string.raw());
  const rbText second(string.raw());
  EXPECT_EQ(log.Text(), Logged({"REALBuildUnicodeString failed"}));
}

TEST_F(TextReader, RebuildThatFailsGivesAnEmptyText) {
  if (!test::IsAlone()) return;
  StartWithout("REALBuildStringWithEncoding");
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_TRUE(text.flagged());
  EXPECT_EQ(text.Utf8(), "");
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_EQ(log.Text(), Logged({"REALBuildUnicodeString failed"}));
}

// A host that returns another string length at each call, the last of `g_lengths` first.
std::vector<abi::RBInteger> g_lengths;
abi::RBInteger NextLength(abi::REALstring) {
  const abi::RBInteger length = g_lengths.back();
  g_lengths.pop_back();
  return length;
}
void* LoadNextLength(const char*, const char*) { return reinterpret_cast<void*>(&NextLength); }

TEST_F(TextReader, UnknownEncodingWithoutALengthIsAnEmptyText) {
  if (!test::IsAlone()) return;
  Start();
  Replace("REALLoadGlobalMethod", &LoadNextLength);
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  g_lengths = {0, 4};
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.encoding(), abi::kAscii);
  EXPECT_FALSE(text.flagged());
  EXPECT_EQ(text.Utf8(), "");
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_TRUE(text.CheckASCII());
  EXPECT_EQ(log.Text(), "");
}

TEST_F(TextReader, UnknownEncodingWithANegativeLengthIsFlagged) {
  if (!test::IsAlone()) return;
  Start();
  Replace("REALLoadGlobalMethod", &LoadNextLength);
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  g_lengths = {-1, 4};
  const test::LogCapture log;
  const rbText text(string.raw());
  EXPECT_TRUE(text.flagged());
  EXPECT_EQ(log.Text(), Logged({"Out of Memory."}));
}

// The copy is asked for its encoding and its text only when there is one.
TEST_F(TextReader, UnknownEncodingWithoutItsCopyIsAnEmptyTextInMacRoman) {
  if (!test::IsAlone()) return;
  StartWithFault("REALBuildStringWithEncoding", {Fault::Kind::kNothing});
  const auto string = MakeString(kCafeMac, abi::kUnknownEncoding);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.encoding(), abi::kMacRoman);
  EXPECT_TRUE(text.flagged());
  EXPECT_FALSE(text.CheckASCII());
  EXPECT_EQ(string.locks(), 1) << "the reader does not hold the string any more";
  EXPECT_EQ(text.Utf8(), "");
  EXPECT_EQ(text.Utf32(), U"");
  text.ConvertUTF32_viaUTF16();
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_EQ(log.Text(), Logged({"REALBuildUnicodeString failed"}));
  EXPECT_EQ(host().CallCount("REALGetStringEncoding"), 1u);
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 0u);
}

TEST_F(TextReader, UnknownEncodingOfOneByteIsReadAsMacRoman) {
  if (!test::IsAlone()) return;
  Start();
  const auto string = MakeString("\x80", abi::kUnknownEncoding);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_TRUE(text.flagged());
  EXPECT_EQ(text.Utf8(), "\xC3\x84");
  EXPECT_EQ(text.Utf32(), U"\u00C4");
  EXPECT_EQ(log.Text(), Logged({"REALBuildUnicodeString failed", kTo16, kFrom16}));
}

TEST_F(TextReader, WithoutTheEncodingOperationTheTextIsMacRoman) {
  StartWithout("REALGetStringEncoding");
  const auto string = MakeString("plain", abi::kUtf8);
  rbText text(string.raw());
  EXPECT_EQ(text.encoding(), abi::kMacRoman);
  EXPECT_EQ(text.Utf8(), "plain");
  EXPECT_EQ(text.Utf32(), U"plain");
}

TEST_F(TextReader, ReadThatFailsIsAnEmptyTextAndFlagged) {
  for (const Fault::Kind kind : {Fault::Kind::kMissing, Fault::Kind::kNothing}) {
    StartWithFault("PluginGetStringData", {kind});
    const auto string = MakeString(kCafeMac, abi::kMacRoman);
    const test::LogCapture log;
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8(), "");
    EXPECT_TRUE(text.flagged());
    EXPECT_EQ(log.Text(), Logged({kReadFailed}));
  }
}

TEST_F(TextReader, Utf32ReadThatFailsIsTriedThroughUtf16) {
  StartWithFault("PluginGetStringData", {Fault::Kind::kNothing, 1, 1});
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"Caf\u00E9");
  EXPECT_TRUE(text.flagged());
  EXPECT_EQ(log.Text(), Logged({kReadFailed, kTo16, kFrom16}));
}

TEST_F(TextReader, BothReadsMayFail) {
  StartWithout("PluginGetStringData");
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"");
  EXPECT_EQ(log.Text(), Logged({kReadFailed, kTo16, kReadFailed}));
}

TEST_F(TextReader, Utf16IsReadAsUtf16) {
  Start();
  const auto string = In(abi::kUtf16, kCafe8);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), kCafe32);
  EXPECT_EQ(log.Text(), Logged({kTo16, kFrom16}));
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 1u);
}

TEST_F(TextReader, Utf8IsDecodedWithoutTheHost) {
  Start();
  for (const abi::Encoding encoding : {abi::kUtf8, abi::kAscii}) {
    const auto string = MakeString(kCafe8, encoding);
    const test::LogCapture log;
    rbText text(string.raw());
    EXPECT_EQ(text.Utf32(), kCafe32);
    EXPECT_EQ(log.Text(), Logged({kTo32}));
  }
  EXPECT_EQ(host().CallCount("PluginGetStringData"), 0u);
}

TEST_F(TextReader, IllegalUtf8EndsTheText) {
  Start();
  const auto string = MakeString("a\xC3\xA9\xC3(", abi::kUtf8);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"a\u00E9");
  EXPECT_EQ(log.Text(), Logged({kTo32, "Illegal UTF-8 sequence! 3"}));
}

TEST_F(TextReader, CutUtf8EndsTheText) {
  Start();
  const auto string = MakeString("ab\xE2\x82", abi::kUtf8);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"ab");
  EXPECT_EQ(log.Text(), Logged({kTo32, "Illegal UTF-8 sequence! 2"}));
}

TEST_F(TextReader, IllegalUtf8OfOneByteIsAnEmptyText) {
  Start();
  for (const abi::Encoding encoding : {abi::kUtf8, abi::kAscii}) {
    const auto string = MakeString("\x80", encoding);
    const test::LogCapture log;
    rbText text(string.raw());
    EXPECT_EQ(text.Utf32(), U"");
    EXPECT_EQ(log.Text(), Logged({kTo32, "Illegal UTF-8 sequence! 0"})) << encoding;
  }
}

// A host that lends UTF-16 with half a surrogate pair as its third unit.
abi::RBBoolean LendLoneSurrogate(abi::REALstring, std::uint32_t, abi::REALstringData* data) {
  static char16_t units[] = {u'a', 0x20AC, 0xD83D, u'b', 0};
  data->data = units;
  data->length = 4 * sizeof(char16_t);
  return 1;
}

// The log counts bytes, of which each unit before the surrogate has two.
TEST_F(TextReader, ALoneSurrogateEndsTheText) {
  Start();
  Replace("PluginGetStringData", &LendLoneSurrogate);
  ReplaceWith("PluginDisposeStringData", nullptr);
  const auto string = In(abi::kUtf16, "x");
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"a\u20AC");
  EXPECT_EQ(log.Text(), Logged({kTo16, kFrom16, "Illegal UTF-8 sequence! 4"}));
}

TEST_F(TextReader, Utf32EndsInAZeroUnit) {
  Start();
  for (const char* bytes : {"plain", kCafe8}) {
    const auto string = MakeString(bytes, abi::kUtf8);
    rbText text(string.raw());
    const std::u32string_view view = text.Utf32();
    EXPECT_EQ(view.data()[view.size()], U'\0');
  }
}

TEST_F(TextReader, ViaUtf16GivesTheSameText) {
  Start();
  for (const char* utf8 : {kCafe8,
                           "\xEF\xBB\xBF"
                           "a\xEF\xBB\xBF\xC3\xA9"}) {
    const auto string = MakeString(utf8, abi::kUtf8);
    rbText direct(string.raw());
    rbText roundabout(string.raw());
    roundabout.ConvertUTF32_viaUTF16();
    EXPECT_EQ(roundabout.Utf32(), direct.Utf32());
    EXPECT_FALSE(direct.Utf32().empty());
  }
}

TEST_F(TextReader, ByteOrderMarksAreDropped) {
  Start();
  const auto utf8 = MakeString(
      "\xEF\xBB\xBF"
      "a\xEF\xBB\xBF"
      "b",
      abi::kUtf8);
  EXPECT_EQ(rbText(utf8.raw()).Utf32(), U"ab");
  const auto utf16 = MakeString(std::string_view("\xFF\xFE"
                                                 "a\0\xC9\0",
                                                 6),
                                abi::kUtf16LittleEndian);
  EXPECT_EQ(rbText(utf16.raw()).Utf32().substr(0, 2), U"a\u00C9");
}

// In a text that the host returns as UTF-32, byte order marks are skipped at the start only.
TEST_F(TextReader, LeadingMarksOfUtf32AreSkipped) {
  Start();
  EXPECT_EQ(rbText(Utf32String({0xFEFF, U'a', 0xFEFF}).raw()).Utf32(),
            (std::u32string{U'a', 0xFEFF}));
  EXPECT_EQ(rbText(Utf32String({0xFEFF, 0xFFFE, U'a'}).raw()).Utf32(), U"a");
  EXPECT_EQ(rbText(Utf32String({0xFFFE, U'a'}).raw()).Utf32(), U"a");
  EXPECT_EQ(rbText(Utf32String({0xFEFF, 0xFEFF, U'a'}).raw()).Utf32(),
            (std::u32string{0xFEFF, U'a'}));
  EXPECT_EQ(rbText(Utf32String({0xFFFE, 0xFEFF, U'a'}).raw()).Utf32(),
            (std::u32string{0xFEFF, U'a'}));
  EXPECT_EQ(rbText(Utf32String({0xFEFF}).raw()).Utf32(), U"");
}

TEST_F(TextReader, Utf32InTheOtherByteOrderIsSwapped) {
  StartLending(StringDataFlavour::kSwappedUtf32);
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  const test::LogCapture log;
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"Caf\u00E9");
  EXPECT_EQ(log.Text(), Logged({"String is Little Endian. Swap."}));
}

TEST_F(TextReader, DataWithoutATerminatorAreCopied) {
  StartLending(StringDataFlavour::kUnterminated);
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  const test::LogCapture log;
  rbText text(string.raw());
  const std::string_view utf8 = text.Utf8();
  EXPECT_EQ(utf8, "Caf\xC3\xA9");
  EXPECT_EQ(utf8.data()[utf8.size()], '\0');
  const std::u32string_view utf32 = text.Utf32();
  EXPECT_EQ(utf32, U"Caf\u00E9");
  EXPECT_EQ(utf32.data()[utf32.size()], U'\0');
  EXPECT_EQ(log.Text(), Logged({kNotTerminated, kNotTerminated}));
}

TEST_F(TextReader, DataOfOneUnitWithoutATerminatorAreCopied) {
  StartLending(StringDataFlavour::kUnterminated);
  const auto string = In(abi::kUtf32, "a");
  const test::LogCapture log;
  rbText text(string.raw());
  const std::string_view utf8 = text.Utf8();
  EXPECT_EQ(utf8, "a");
  EXPECT_EQ(utf8.data()[1], '\0');
  const std::u32string_view utf32 = text.Utf32();
  EXPECT_EQ(utf32, U"a");
  EXPECT_EQ(utf32.data()[1], U'\0');
  EXPECT_EQ(log.Text(), Logged({kNotTerminated, kNotTerminated}));
}

// A host that lends string data at an odd address.
abi::RBBoolean LendOddAddress(abi::REALstring, std::uint32_t, abi::REALstringData* data) {
  alignas(16) static char memory[13];
  const char32_t units[] = {U'a', 0x20AC, 0};
  std::memcpy(memory + 1, units, sizeof units);
  data->data = memory + 1;
  data->length = 2 * sizeof(char32_t);
  return 1;
}

TEST_F(TextReader, DataAtAnOddAddressAreCopied) {
  Start();
  Replace("PluginGetStringData", &LendOddAddress);
  ReplaceWith("PluginDisposeStringData", nullptr);
  const auto string = In(abi::kUtf32, "xy");
  rbText text(string.raw());
  EXPECT_EQ(text.Utf32(), U"a\u20AC");
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(text.Utf32().data()) % alignof(char32_t), 0u);
}

abi::RBBoolean LendNull(abi::REALstring, std::uint32_t, abi::REALstringData* data) {
  data->data = nullptr;
  data->length = 8;
  return 1;
}

TEST_F(TextReader, NullDataAreAnEmptyText) {
  Start();
  Replace("PluginGetStringData", &LendNull);
  ReplaceWith("PluginDisposeStringData", nullptr);
  for (const abi::Encoding encoding : {abi::kMacRoman, abi::kUtf16, abi::kUtf32}) {
    const auto string = MakeString("\x8E\x8E\x8E\x8E", encoding);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8(), "");
    EXPECT_EQ(text.Utf32(), U"");
  }
}

TEST_F(TextReader, EveryReadIsGivenBack) {
  Start();
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  {
    rbText text(string.raw());
    text.ConvertUTF8();
    text.ConvertUTF8();
    text.ConvertUTF32();
    text.ConvertUTF32_viaUTF16();
    EXPECT_EQ(host().ledger().Live().string_data, 4);
  }
  EXPECT_EQ(host().ledger().Live().string_data, 0);
}

TEST_F(TextReader, ToleratesAHostThatThrowsWhenDataIsGivenBack) {
  StartWithFault("PluginDisposeStringData", {Fault::Kind::kThrows});
  Replace("PluginGetStringData", &LendNull);
  const auto string = MakeString(kCafeMac, abi::kMacRoman);
  { EXPECT_EQ(rbText(string.raw()).Utf8(), ""); }
  EXPECT_EQ(host().CallCount("PluginDisposeStringData"), 1u);
}

TEST_F(TextReader, WithoutMemoryViewsAreEmpty) {
  StartLending(StringDataFlavour::kUnterminated);
  const auto string = MakeString(std::string(5000, '\x8E'), abi::kMacRoman);
  const auto plain = MakeString(std::string(5000, 'a'), abi::kUtf8);
  const auto utf8 = MakeString("\xC3\xA9" + std::string(5000, 'a'), abi::kUtf8);
  rbText text(string.raw());
  rbText plain_text(plain.raw());
  rbText utf8_text(utf8.raw());
  const test::LogCapture log;
  {
    text.ConvertUTF8();  // borrows the bytes that the host lends
    const std::string before = log.Text();
    EXPECT_EQ(before, Logged({kNotTerminated}));
    const test::AllocationLimit limit(5000);
    plain_text.ConvertUTF32();
    utf8_text.ConvertUTF32();
  }
  EXPECT_EQ(plain_text.Utf32(), U"");
  EXPECT_EQ(utf8_text.Utf32(), U"");
  EXPECT_EQ(log.Text(), Logged({kNotTerminated, "Out of memory", kTo32, "Out of memory"}));
}

// A host that lends 5,000 bytes without a zero after them, for which it allocates no memory.
constexpr std::size_t kLent = 5000;
alignas(16) char g_lent[kLent + 4];
abi::RBBoolean LendLong(abi::REALstring, std::uint32_t, abi::REALstringData* data) {
  std::memset(g_lent, 'x', sizeof g_lent);
  data->data = g_lent;
  data->length = kLent;
  return 1;
}
abi::RBBoolean LendSwapped(abi::REALstring, std::uint32_t, abi::REALstringData* data) {
  std::memset(g_lent, 0, sizeof g_lent);
  std::memcpy(g_lent, "\0\0\xFE\xFF", 4);
  data->data = g_lent;
  data->length = kLent;
  return 1;
}

TEST_F(TextReader, CopiesThatFailLeaveTheViewsEmpty) {
  Start();
  Replace("PluginGetStringData", &LendLong);
  ReplaceWith("PluginDisposeStringData", nullptr);
  const auto string = MakeString("\x8E", abi::kMacRoman);
  const test::LogCapture log;
  {
    const test::AllocationLimit limit(4000);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf8(), "");
    EXPECT_EQ(text.Utf32(), U"");
  }
  EXPECT_EQ(log.Text(), Logged({kNotTerminated, "Out of memory", kNotTerminated, "Out of memory"}));
}

TEST_F(TextReader, SwapThatFailsLeavesTheViewEmpty) {
  Start();
  Replace("PluginGetStringData", &LendSwapped);
  ReplaceWith("PluginDisposeStringData", nullptr);
  const auto string = MakeString("\x8E", abi::kMacRoman);
  const test::LogCapture log;
  {
    const test::AllocationLimit limit(4000);
    rbText text(string.raw());
    EXPECT_EQ(text.Utf32(), U"");
  }
  EXPECT_EQ(log.Text(), Logged({"String is Little Endian. Swap.", "Out of memory"}));
}

// A reader begins and ends with a guard word; overwriting one is reported in the log.
TEST_F(TextReader, OverwrittenGuardsAreLogged) {
  Start();
  constexpr std::uint32_t kGuard = 0x5A515654;
  alignas(rbText) unsigned char memory[sizeof(rbText)];
  std::memset(memory, 0, sizeof memory);
  auto* text = new (memory) rbText(nullptr);
  std::vector<std::size_t> guards;
  for (std::size_t i = 0; i + sizeof kGuard <= sizeof memory; i += sizeof kGuard) {
    if (std::memcmp(memory + i, &kGuard, sizeof kGuard) == 0) guards.push_back(i);
  }
  ASSERT_EQ(guards.size(), 2u);
  EXPECT_EQ(guards[0], 0u);
  const std::uint32_t first = 17, last = 4294967295;
  std::memcpy(memory + guards[0], &first, sizeof first);
  std::memcpy(memory + guards[1], &last, sizeof last);
  const test::LogCapture log;
  text->~rbText();
  EXPECT_EQ(log.Text(),
            Logged({"Check1 in rbText invalid 17", "Check2 in rbText invalid 4294967295"}));
}

TEST_F(TextReader, IntactGuardsAreNotLogged) {
  Start();
  const test::LogCapture log;
  { const rbText text(nullptr); }
  EXPECT_EQ(log.Text(), "");
}

}  // namespace
}  // namespace zqv::host
