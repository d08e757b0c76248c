#include <cstring>

#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

using namespace std::string_view_literals;

class StringsTest : public HostTest {
 protected:
  void SetUp() override { Start(); }

  // Unlocks both strings.
  std::string Sum(abi::REALstring left, abi::REALstring right, abi::Encoding* encoding) {
    const abi::REALstring sum = api().RuntimeAddString(left, right);
    *encoding = api().REALGetStringEncoding(sum);
    const std::string bytes = Bytes(sum);
    for (const abi::REALstring string : {left, right, sum}) api().REALUnlockString(string);
    return bytes;
  }

  // Unlocks both strings.
  int Compare(abi::REALstring left, abi::REALstring right) {
    const abi::RBInteger result = api().RuntimeStringCompare(left, right);
    api().REALUnlockString(left);
    api().REALUnlockString(right);
    return result == 0 ? 0 : result < 0 ? -1 : 1;
  }
};
using StringsDeathTest = StringsTest;

TEST_F(StringsTest, BuildGivesBytesAndANul) {
  const abi::REALstring string = api().REALBuildStringWithEncoding("a\0bcd", 3, abi::kIsoLatin1);
  EXPECT_EQ(api().REALGetStringEncoding(string), 0x0201U);
  EXPECT_EQ(Bytes(string), "a\0b"sv);
  EXPECT_EQ(static_cast<const char*>(api().StringGetCString(string))[3], '\0');
  api().REALUnlockString(string);
}

TEST_F(StringsTest, BuildWithoutEncodingIsUnknown) {
  const abi::REALstring string = api().REALBuildString("abc", 3);
  EXPECT_EQ(api().REALGetStringEncoding(string), 0xFFFFU);
  api().REALUnlockString(string);
}

TEST_F(StringsTest, NilStandsForEmpty) {
  EXPECT_EQ(api().REALBuildString("", 0), nullptr);
  EXPECT_EQ(api().REALBuildStringWithEncoding(nullptr, 0, abi::kUtf8), nullptr);
  EXPECT_EQ(api().StringGetCString(nullptr), nullptr);
  EXPECT_EQ(api().REALConvertString(nullptr, abi::kUtf8), nullptr);
  EXPECT_EQ(api().RuntimeAddString(nullptr, nullptr), nullptr);
  api().REALSetStringEncoding(nullptr, abi::kUtf8);
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(nullptr, abi::kUtf8, &data), 1);
  EXPECT_EQ(data.length, 0U);
  api().PluginDisposeStringData(&data);
}

TEST_F(StringsDeathTest, BuildWithBadArguments) {
  EXPECT_DEATH(api().REALBuildString("a", -1), "REALBuildString: the length is negative");
  EXPECT_DEATH(api().REALBuildString(nullptr, 1), "REALBuildString: the bytes are null");
}

TEST_F(StringsTest, SetEncodingRelabels) {
  const abi::REALstring string = Build("\xE4", abi::kIsoLatin1);
  api().REALSetStringEncoding(string, abi::kUtf16);
  EXPECT_EQ(api().REALGetStringEncoding(string), 0x0100U);
  EXPECT_EQ(Bytes(string), "\xE4");
  api().REALUnlockString(string);
}

TEST_F(StringsTest, ConvertGivesANewString) {
  const abi::REALstring string = Build("\xE4", abi::kIsoLatin1);
  const abi::REALstring converted = api().REALConvertString(string, abi::kUtf8);
  EXPECT_EQ(Bytes(converted), "\xC3\xA4");
  EXPECT_EQ(api().REALGetStringEncoding(converted), 0x08000100U);
  EXPECT_EQ(Locks(converted), 1);
  EXPECT_EQ(Locks(string), 1);
  api().REALUnlockString(converted);
  api().REALUnlockString(string);
}

TEST_F(StringsTest, ConvertFailsWithNil) {
  const abi::REALstring string = Build("\xE4", abi::kUtf8);
  EXPECT_EQ(api().REALConvertString(string, abi::kUtf16), nullptr);
  api().REALUnlockString(string);
}

TEST_F(StringsTest, DataInUtf32) {
  const abi::REALstring string = Build("a\xF0\x9F\x98\x80", abi::kUtf8);
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf32, &data), 1);
  ASSERT_EQ(data.length, 8U);
  EXPECT_EQ(data.encoding, 0x0C000100U);
  std::uint32_t units[3] = {9, 9, 9};
  std::memcpy(units, data.data, sizeof units);
  EXPECT_EQ(units[0], 0x61U);
  EXPECT_EQ(units[1], 0x1F600U);
  EXPECT_EQ(units[2], 0U) << "a zero unit follows the text";
  api().REALUnlockString(string);
  std::memcpy(units, data.data, sizeof units);
  EXPECT_EQ(units[1], 0x1F600U) << "the data is valid until it is given back";
  api().PluginDisposeStringData(&data);
  EXPECT_EQ(data.data, nullptr);
}

TEST_F(StringsTest, DataFailsForTextThatCannotBeConverted) {
  const abi::REALstring string = Build("\xFF", abi::kUtf8);
  abi::REALstringData data;
  EXPECT_EQ(api().PluginGetStringData(string, abi::kUtf32, &data), 0);
  EXPECT_EQ(host().ledger().Live().string_data, 0);
  api().REALUnlockString(string);
}

TEST_F(StringsTest, LengthMethodOnlyByItsExactDeclaration) {
  EXPECT_NE(api().REALLoadGlobalMethod(nullptr, "LenB( s as string ) as integer"), nullptr);
  EXPECT_EQ(api().REALLoadGlobalMethod(nullptr, "LenB(s as string) as integer"), nullptr);
  EXPECT_EQ(api().REALLoadGlobalMethod(nullptr, "Len( s as string ) as integer"), nullptr);
}

TEST_F(StringsDeathTest, LengthMethodWithAReservedArgument) {
  EXPECT_DEATH(api().REALLoadGlobalMethod("x", "LenB( s as string ) as integer"), "must be null");
}

TEST_F(StringsTest, AddKeepsACommonEncoding) {
  abi::Encoding encoding = 0;
  EXPECT_EQ(Sum(Build("\xE4", abi::kIsoLatin1), Build("b", abi::kIsoLatin1), &encoding),
            "\xE4"
            "b");
  EXPECT_EQ(encoding, 0x0201U);
}

TEST_F(StringsTest, AddOfDifferentEncodingsIsUtf8) {
  abi::Encoding encoding = 0;
  EXPECT_EQ(Sum(Build("\xE4", abi::kIsoLatin1), Build("@", abi::kAscii), &encoding), "\xC3\xA4@");
  EXPECT_EQ(encoding, 0x08000100U);
}

TEST_F(StringsTest, AddWithNil) {
  abi::Encoding encoding = 0;
  EXPECT_EQ(Sum(nullptr, Build("@", abi::kAscii), &encoding), "@");
  EXPECT_EQ(encoding, 0x0600U);
  EXPECT_EQ(Sum(Build("x", abi::kIsoLatin1), nullptr, &encoding), "x");
  EXPECT_EQ(encoding, 0x0201U);
}

TEST_F(StringsTest, AddOfTextThatCannotBeConverted) {
  abi::Encoding encoding = 0;
  EXPECT_EQ(Sum(Build("\xFF", abi::kUtf8), Build("@", abi::kAscii), &encoding), "\xFF@");
  EXPECT_EQ(encoding, 0xFFFFU);
}

TEST_F(StringsTest, CompareIgnoresCase) {
  EXPECT_EQ(Compare(Build("Subject"), Build("sUBJECT")), 0);
  EXPECT_EQ(Compare(Build("a"), Build("B")), -1);
  EXPECT_EQ(Compare(Build("B"), Build("a")), 1);
  EXPECT_EQ(Compare(Build("a"), Build("ab")), -1);
  EXPECT_EQ(Compare(Build("\xC3\x84\xD0\x96"), Build("\xC3\xA4\xD0\xB6")), 0);
}

TEST_F(StringsTest, CompareIsByTextNotByBytes) {
  EXPECT_EQ(Compare(Build("\xE4", abi::kIsoLatin1), Build("\xC3\x84", abi::kUtf8)), 0);
  EXPECT_EQ(Compare(Build("a\0"sv, abi::kUtf16LittleEndian), Build("A", abi::kAscii)), 0);
}

TEST_F(StringsTest, CompareOfUnknownEncodingsIsByBytes) {
  EXPECT_EQ(Compare(Build("A\xE4", abi::kUnknownEncoding), Build("a\xE4", abi::kUtf8)), 0);
  EXPECT_EQ(Compare(Build("\xC4", abi::kUnknownEncoding), Build("\xE4", abi::kUtf8)), -1);
}

TEST_F(StringsTest, CompareWithNil) {
  EXPECT_EQ(Compare(nullptr, nullptr), 0);
  EXPECT_EQ(Compare(nullptr, Build("a")), -1);
}

class StringDataFlavourTest : public HostTest {};

TEST_F(StringDataFlavourTest, Unterminated) {
  Capabilities capabilities;
  capabilities.string_data = StringDataFlavour::kUnterminated;
  Start(capabilities);
  const abi::REALstring string = Build("abc");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf8, &data), 1);
  EXPECT_EQ(std::memcmp(data.data, "abcAAAA", 7), 0);
  EXPECT_EQ(data.length, 3U);
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
}

TEST_F(StringDataFlavourTest, SwappedUtf32) {
  Capabilities capabilities;
  capabilities.string_data = StringDataFlavour::kSwappedUtf32;
  Start(capabilities);
  const abi::REALstring string = Build("a\xF0\x9F\x98\x80");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf32, &data), 1);
  ASSERT_EQ(data.length, 12U);
  std::uint32_t units[4] = {};
  std::memcpy(units, data.data, sizeof units);
  EXPECT_EQ(units[0], 0xFFFE0000U);
  EXPECT_EQ(units[1], 0x61000000U);
  EXPECT_EQ(units[2], 0x00F60100U);
  EXPECT_EQ(units[3], 0U);
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
}

}  // namespace
}  // namespace zqv::standin
