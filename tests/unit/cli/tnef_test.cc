#include "cli/tnef.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zqv::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Encodes a number as TNEF does, the lowest byte first.
std::string Number(std::uint64_t number, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i) & 0xFFU);
  return text;
}

std::string Attribute(std::uint32_t number, std::string_view data) {
  std::uint32_t sum = 0;
  for (const char c : data) sum += static_cast<unsigned char>(c);
  return "\x02" + Number(number, 4) + Number(data.size(), 4) + std::string(data) + Number(sum, 2);
}

std::string Padded(std::string text) {
  text.resize((text.size() + 3) / 4 * 4);
  return text;
}

std::string Property(std::uint16_t type, std::uint16_t id, const std::string& value) {
  return Number(type, 2) + Number(id, 2) + Number(1, 4) + Number(value.size(), 4) + Padded(value);
}

constexpr std::uint32_t kBegin = 0x00069002;
constexpr std::uint32_t kTitle = 0x00018010;
constexpr std::uint32_t kData = 0x0006800F;
constexpr std::uint32_t kProperties = 0x00069005;
constexpr std::uint32_t kCodePage = 0x00069007;
constexpr std::uint16_t kText8 = 0x001E;
constexpr std::uint16_t kText16 = 0x001F;
constexpr std::uint16_t kBinary = 0x0102;

const std::string kStart = Number(0x223E9F78, 4) + Number(1, 2);

std::string File(const std::string& name, const std::string& data) {
  return Attribute(kBegin, std::string(14, '\0')) + Attribute(kTitle, name + '\0') +
         Attribute(kData, data);
}

std::string Properties(std::uint32_t count, const std::string& list) {
  return Attribute(kProperties, Number(count, 4) + list);
}

std::string Utf16(std::string_view ascii) {
  std::string text;
  for (const char c : ascii) text += {c, '\0'};
  return text + std::string(2, '\0');
}

TEST(Tnef, IsKnownByItsSignature) {
  EXPECT_TRUE(IsTnef(kStart));
  EXPECT_FALSE(IsTnef(kStart.substr(0, 3)));
  EXPECT_FALSE(IsTnef("x" + kStart));
  EXPECT_FALSE(IsTnef(""));
}

TEST(Tnef, HasFilesWithNamesAndBytes) {
  const std::string data = kStart + File("a.txt", "hello") + File("b.bin", std::string(3, '\0'));
  const TnefContent content = ReadTnef(data);
  ASSERT_THAT(content.files, SizeIs(2));
  EXPECT_EQ(content.files[0].name, "a.txt");
  EXPECT_EQ(content.files[0].bytes, "hello");
  EXPECT_EQ(content.files[1].name, "b.bin");
  EXPECT_EQ(content.files[1].bytes, std::string_view("\0\0\0", 3));
  EXPECT_TRUE(content.is_whole);
}

TEST(Tnef, OfNothingIsEmpty) {
  const TnefContent content = ReadTnef(kStart);
  EXPECT_THAT(content.files, IsEmpty());
  EXPECT_TRUE(content.is_whole);
}

TEST(Tnef, ALongNameIsPreferred) {
  const std::string list = Property(kText16, 0x3707, Utf16("a long name.txt")) +
                           Property(kText8, 0x370E, std::string("text/plain\0", 11)) +
                           Property(kText8, 0x3712, "one@example.com");
  for (const std::string& data : {kStart + File("LONG~1.TXT", "x") + Properties(3, list),
                                  kStart + Attribute(kBegin, "") + Properties(3, list) +
                                      Attribute(kTitle, "LONG~1.TXT") + Attribute(kData, "x")}) {
    const TnefContent content = ReadTnef(data);
    ASSERT_THAT(content.files, SizeIs(1));
    EXPECT_EQ(content.files[0].name, "a long name.txt");
    EXPECT_EQ(content.files[0].mime_type, "text/plain");
    EXPECT_EQ(content.files[0].content_id, "one@example.com");
    EXPECT_EQ(content.files[0].bytes, "x");
  }
}

TEST(Tnef, NamesAreInTheCodePage) {
  const auto name_of = [](std::uint32_t code_page, const std::string& name) {
    const std::string data =
        kStart + Attribute(kCodePage, Number(code_page, 4) + Number(0, 4)) + File(name, "x");
    return ReadTnef(data).files.at(0).name;
  };
  EXPECT_EQ(name_of(1252, "\xFC.txt"), "\u00FC.txt");
  EXPECT_EQ(name_of(1251, "\xFC.txt"), "\u044C.txt");
  EXPECT_EQ(name_of(99999, "\xFC.txt"),
            "\u00FC.txt");  // an unknown code page is read as the most common one, 1252
}

TEST(Tnef, EarlierPropertiesOfAnySizeAreSkipped) {
  const std::string wanted = Property(kText8, 0x3707, "a.txt");
  const std::string name = Number(0, 8) + Number(0, 8);
  for (const std::string& other :
       {Number(0x0003, 2) + Number(0x3705, 2) + Number(1, 4),  // a 32-bit integer
        Number(0x0005, 2) + Number(0x3705, 2) + Number(1, 8),  // a floating-point number
        Number(0x000B, 2) + Number(0x3705, 2) + Number(1, 4),  // a boolean
        Number(0x0040, 2) + Number(0x3705, 2) + Number(1, 8),  // a time
        Number(0x0048, 2) + Number(0x3705, 2) + Number(1, 8) + Number(2, 8),  // a GUID
        Number(0x1003, 2) + Number(0x3705, 2) + Number(2, 4) + Number(1, 4) + Number(2, 4),
        Property(kBinary, 0x3702, "abc"), Property(kText8, 0x3001, "abcde"),
        Number(0x0003, 2) + Number(0x8001, 2) + name + Number(0, 4) + Number(7, 4) + Number(1, 4),
        Number(0x0003, 2) + Number(0x8001, 2) + name + Number(1, 4) + Number(6, 4) +
            Padded("abcdef") + Number(1, 4)}) {
    const std::string data = kStart + File("A~1", "x") + Properties(2, other + wanted);
    EXPECT_EQ(ReadTnef(data).files.at(0).name, "a.txt");
  }
}

TEST(Tnef, AnObjectBeginsWithItsInterface) {
  const std::string inner = kStart + File("deep.txt", "deep");
  const std::string value = std::string(16, 'i') + inner;
  const std::string data =
      kStart + Attribute(kBegin, "") + Properties(1, Property(0x000D, 0x3701, value));
  EXPECT_EQ(ReadTnef(data).files.at(0).bytes, inner);
  const std::string short_one =
      kStart + Attribute(kBegin, "") + Properties(1, Property(0x000D, 0x3701, "short"));
  EXPECT_EQ(ReadTnef(short_one).files.at(0).bytes, "");
}

TEST(Tnef, AttributesOfTheMessageAreNotFiles) {
  const std::string data = kStart + Attribute(kData, "x") + Attribute(kTitle, "a.txt") +
                           Properties(1, Property(kText8, 0x3707, "b.txt"));
  EXPECT_THAT(ReadTnef(data).files, IsEmpty());
}

TEST(Tnef, LengthsBeyondTheEndGiveNothing) {
  for (const std::uint64_t length : {std::uint64_t{6}, std::uint64_t{0x7FFFFFFF},
                                     std::uint64_t{0x80000000}, std::uint64_t{0xFFFFFFFF}}) {
    const std::string data =
        kStart + File("a.txt", "hello") + "\x02" + Number(kData, 4) + Number(length, 4) + "abcde";
    const TnefContent content = ReadTnef(data);
    EXPECT_FALSE(content.is_whole) << length;
    ASSERT_THAT(content.files, SizeIs(1));
    EXPECT_EQ(content.files[0].name, "a.txt");
    EXPECT_THAT(content.files[0].bytes, testing::AnyOf("hello", "")) << length;
  }
}

// The same for counts and lengths inside the list of properties.
TEST(Tnef, PropertiesWithTooLargeSizesEndWithTheirAttribute) {
  const std::string good = Property(kText8, 0x3707, "a.txt");
  const std::string most = Number(0xFFFFFFFF, 4);
  for (const std::string& list :
       {good, good + Number(kBinary, 2) + Number(0x3702, 2) + most,
        good + Number(kBinary, 2) + Number(0x3702, 2) + most + most,
        good + Number(kBinary, 2) + Number(0x3702, 2) + Number(1, 4) + most + "abc",
        good + Number(0x1003, 2) + Number(0x3702, 2) + most + "abcd",
        good + Number(0x0003, 2) + Number(0x8002, 2) + std::string(16, 'x') + Number(1, 4) +
            most}) {
    const std::string data =
        kStart + File("A~1", "x") + Properties(0xFFFFFFFF, list) + File("b.txt", "y");
    const TnefContent content = ReadTnef(data);
    ASSERT_THAT(content.files, SizeIs(2));
    EXPECT_EQ(content.files[0].name, "a.txt");
    EXPECT_EQ(content.files[1].bytes, "y");
    EXPECT_TRUE(content.is_whole);
  }
}

TEST(Tnef, TruncatedDataGivesTheFilesBeforeTheCut) {
  const std::string first = kStart + File("a.txt", "hello");
  const std::string whole =
      first + File("b.txt", "world") + Properties(1, Property(kText16, 0x3707, Utf16("long.txt")));
  for (std::size_t size = 4; size < whole.size(); ++size) {
    const std::string cut = whole.substr(0, size);
    const TnefContent content = ReadTnef(cut);
    ASSERT_LE(content.files.size(), 2U) << size;
    for (const TnefFile& file : content.files) {
      EXPECT_THAT(file.bytes, testing::AnyOf("", "hello", "world")) << size;
    }
    if (size >= first.size()) {
      EXPECT_EQ(content.files.at(0).bytes, "hello") << size;
    }
  }
  EXPECT_TRUE(ReadTnef(whole).is_whole);
  EXPECT_FALSE(ReadTnef(whole.substr(0, whole.size() - 1)).is_whole);
}

}  // namespace
}  // namespace zqv::cli
