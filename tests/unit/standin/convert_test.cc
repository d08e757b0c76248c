#include "standin/convert.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <string>

namespace zqv::standin {
namespace {

using namespace std::string_literals;

struct Pair {
  const char* name;
  abi::Encoding encoding;
  std::string bytes;
  std::string utf8;
};

std::ostream& operator<<(std::ostream& out, const Pair& pair) { return out << pair.name; }

// The bytes are taken from the encodings' published code tables.
const Pair kPairs[] = {
    {"MacRoman", 0x0000, "\x8A\xDB", "\xC3\xA4\xE2\x82\xAC"},
    {"MacCyrillic", 0x0007, "\x80", "\xD0\x90"},
    {"Utf16", 0x0100, "\xAC\x20"s, "\xE2\x82\xAC"},
    {"Latin1", 0x0201, "\xE4", "\xC3\xA4"},
    {"Latin2", 0x0202, "\xB1", "\xC4\x85"},
    {"Cyrillic", 0x0205, "\xB0", "\xD0\x90"},
    {"Greek", 0x0207, "\xE1", "\xCE\xB1"},
    {"Latin5", 0x0209, "\xFD", "\xC4\xB1"},
    {"Thai", 0x020B, "\xA1", "\xE0\xB8\x81"},
    {"Latin9", 0x020F, "\xA4", "\xE2\x82\xAC"},
    {"Latin10", 0x0210, "\xAA", "\xC8\x98"},
    {"Dos437", 0x0400, "\x84", "\xC3\xA4"},
    {"Dos866", 0x041B, "\x80", "\xD0\x90"},
    {"Dos932", 0x0420, "\x82\xA0", "\xE3\x81\x82"},
    {"Dos936", 0x0421, "\xC4\xE3", "\xE4\xBD\xA0"},
    {"Windows1252", 0x0500, "\x80", "\xE2\x82\xAC"},
    {"Windows1250", 0x0501, "\x8A", "\xC5\xA0"},
    {"Windows1251", 0x0502, "\xC0", "\xD0\x90"},
    {"Windows1255", 0x0505, "\xE0", "\xD7\x90"},
    {"Windows1258", 0x0508, "\xD0", "\xC4\x90"},
    {"Ascii", 0x0600, "a~", "a~"},
    {"Gb2312", 0x0630, "\xC4\xE3", "\xE4\xBD\xA0"},
    {"Gbk", 0x0631, "\xC4\xE3", "\xE4\xBD\xA0"},
    {"Iso2022Jp", 0x0820, "\x1B$B$\"\x1B(B", "\xE3\x81\x82"},
    {"EucJp", 0x0920, "\xA4\xA2", "\xE3\x81\x82"},
    {"EucKr", 0x0940, "\xB0\xA1", "\xEA\xB0\x80"},
    {"ShiftJis", 0x0A01, "\x82\xA0", "\xE3\x81\x82"},
    {"Koi8R", 0x0A02, "\xE1", "\xD0\x90"},
    {"Big5", 0x0A03, "\xA4\xA4", "\xE4\xB8\xAD"},
    {"Koi8U", 0x0A08, "\xA4", "\xD1\x94"},
    {"Utf7", 0x04000100, "+IKw-", "\xE2\x82\xAC"},
    {"Utf32", 0x0C000100, "\x00\xF6\x01\x00"s, "\xF0\x9F\x98\x80"},
    {"Utf16Big", 0x10000100, "\xD8\x3D\xDE\x00"s, "\xF0\x9F\x98\x80"},
    {"Utf16Little", 0x14000100, "\x3D\xD8\x00\xDE"s, "\xF0\x9F\x98\x80"},
    {"Utf32Big", 0x18000100, "\x00\x00\x20\xAC"s, "\xE2\x82\xAC"},
    {"Utf32Little", 0x1C000100, "\xAC\x20\x00\x00"s, "\xE2\x82\xAC"},
};

class ConvertPairTest : public ::testing::TestWithParam<Pair> {};

TEST_P(ConvertPairTest, BothWays) {
  const Pair& pair = GetParam();
  EXPECT_EQ(Convert(pair.bytes, pair.encoding, abi::kUtf8), pair.utf8);
  EXPECT_EQ(Convert(pair.utf8, abi::kUtf8, pair.encoding), pair.bytes);
}

INSTANTIATE_TEST_SUITE_P(Encodings, ConvertPairTest, ::testing::ValuesIn(kPairs),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ConvertTest, InvalidSourceFails) {
  EXPECT_EQ(Convert("a\x80", abi::kAscii, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("\xC3", abi::kUtf8, abi::kUtf16), std::nullopt) << "cut off";
  EXPECT_EQ(Convert("\xC0\x80", abi::kUtf8, abi::kUtf16), std::nullopt) << "overlong";
  EXPECT_EQ(Convert("\xED\xA0\x80", abi::kUtf8, abi::kUtf32), std::nullopt) << "surrogate";
  EXPECT_EQ(Convert("\xF4\x90\x80\x80", abi::kUtf8, abi::kUtf32), std::nullopt) << "too large";
  EXPECT_EQ(Convert("\x00\xD8"s, abi::kUtf16LittleEndian, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("\x41"s, abi::kUtf16LittleEndian, abi::kUtf8), std::nullopt)
      << "half a UTF-16 unit";
  EXPECT_EQ(Convert("\x81", abi::kWindowsLatin1, abi::kUtf8), std::nullopt) << "no character";
}

TEST(ConvertTest, SurrogatesAndTooLargeCodePointsFailInUtf32) {
  EXPECT_EQ(Convert("\x00\xD8\x00\x00"s, abi::kUtf32LittleEndian, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("\xFF\xDF\x00\x00"s, abi::kUtf32LittleEndian, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("\x00\x00\x11\x00"s, abi::kUtf32LittleEndian, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("\xFF\xFF\x10\x00"s, abi::kUtf32LittleEndian, abi::kUtf8), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(Convert("\x00\xD8\x00\x00"s, abi::kUtf32LittleEndian, abi::kUtf32BigEndian),
            std::nullopt);
}

TEST(ConvertTest, TargetThatCannotHoldACharacterFails) {
  EXPECT_EQ(Convert("\xE2\x82\xAC", abi::kUtf8, abi::kIsoLatin1), std::nullopt);
  EXPECT_EQ(Convert("\xC3\xA4", abi::kUtf8, abi::kAscii), std::nullopt);
}

TEST(ConvertTest, SameEncodingIsCheckedToo) {
  EXPECT_EQ(Convert("\xC3\xA4", abi::kUtf8, abi::kUtf8), "\xC3\xA4");
  EXPECT_EQ(Convert("\xC3", abi::kUtf8, abi::kUtf8), std::nullopt);
}

TEST(ConvertTest, UnknownConvertsOnlyToItself) {
  EXPECT_EQ(Convert("a\xFF", abi::kUnknownEncoding, abi::kUnknownEncoding), "a\xFF");
  EXPECT_EQ(Convert("a", abi::kUnknownEncoding, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("a", abi::kUtf8, abi::kUnknownEncoding), std::nullopt);
}

TEST(ConvertTest, EncodingsWithoutAConverterFail) {
  EXPECT_EQ(Convert("a", 0x020C, abi::kUtf8), std::nullopt);
  EXPECT_EQ(Convert("a", 0x12345678, abi::kUtf8), std::nullopt);
  EXPECT_FALSE(IsKnownEncoding(0x020C));
  EXPECT_TRUE(IsKnownEncoding(abi::kMacRoman));
}

TEST(ConvertTest, ByteOrderMarkIsACharacter) {
  EXPECT_EQ(Convert("\xEF\xBB\xBF", abi::kUtf8, abi::kUtf16LittleEndian), "\xFF\xFE");
  EXPECT_EQ(Convert("\xFF\xFE\x61\x00"s, abi::kUtf16LittleEndian, abi::kUtf8), "\xEF\xBB\xBF\x61");
}

TEST(ConvertTest, LongTextGrowsTheBuffer) {
  const std::string latin(100'000, '\xE4');
  std::string text;
  for (std::size_t i = 0; i < latin.size(); ++i) text += "\xC3\xA4";
  EXPECT_EQ(Convert(latin, abi::kIsoLatin1, abi::kUtf8), text);
  const auto wide = Convert(text, abi::kUtf8, abi::kUtf32BigEndian);
  ASSERT_TRUE(wide.has_value());
  EXPECT_EQ(wide->size(), 400'000U);
  EXPECT_EQ(Convert(*wide, abi::kUtf32BigEndian, abi::kUtf8), text);
}

TEST(ConvertTest, EmptyTextConverts) { EXPECT_EQ(Convert("", abi::kUtf8, abi::kUtf16), ""); }

// ASCII text is converted without iconv. For each such byte the result must be the one of iconv.
TEST(ConvertTest, AsciiIsConvertedAsByIconv) {
  int encodings = 0;
  for (abi::Encoding encoding = 0; encoding < 0x0B00; ++encoding) {
    if (!IsKnownEncoding(encoding)) continue;
    ++encodings;
    iconv_t const converter = iconv_open("UTF-8", EncodingName(encoding).c_str());
    ASSERT_NE(converter, reinterpret_cast<iconv_t>(-1));
    for (char byte = 1; byte > 0 && byte < 127; ++byte) {
      char in_byte = byte;
      char* in = &in_byte;
      std::size_t in_left = 1;
      std::string converted(8, '\0');
      char* out = converted.data();
      std::size_t out_left = converted.size();
      iconv(converter, nullptr, nullptr, nullptr, nullptr);
      const bool good = iconv(converter, &in, &in_left, &out, &out_left) == 0 &&
                        iconv(converter, nullptr, nullptr, &out, &out_left) == 0;
      converted.resize(converted.size() - out_left);
      const auto expected = good ? std::optional(converted) : std::nullopt;
      EXPECT_EQ(Convert(std::string(1, byte), encoding, abi::kUtf8), expected)
          << EncodingName(encoding) << " byte " << int{byte};
    }
    iconv_close(converter);
  }
  EXPECT_EQ(encodings, 70);
}

TEST(ConvertTest, Names) {
  EXPECT_EQ(EncodingName(abi::kUtf8), "UTF-8");
  EXPECT_EQ(EncodingName(abi::kUnknownEncoding), "unknown");
  EXPECT_EQ(EncodingName(0x0A04), "0x00000A04");
}

}  // namespace
}  // namespace zqv::standin
