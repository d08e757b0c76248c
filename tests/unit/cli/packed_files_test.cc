#include "cli/packed_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqv::cli {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

const std::string kAllBytes = [] {
  std::string bytes;
  for (int i = 0; i < 600; ++i) bytes += static_cast<char>(i * 7);
  return bytes;
}();

// Encodes with uuencode (POSIX): each line has one character for its number of bytes, then six bits
// a character.
std::string Uuencoded(std::string_view data, const std::string& name, char zero = '`') {
  const auto digit = [&](unsigned value) {
    return value == 0 ? zero : static_cast<char>(value + ' ');
  };
  std::string text = "begin 644 " + name + "\n";
  for (; !data.empty(); data.remove_prefix(std::min<std::size_t>(45, data.size()))) {
    const std::string_view line = data.substr(0, 45);
    text += digit(static_cast<unsigned>(line.size()));
    for (std::size_t i = 0; i < line.size(); i += 3) {
      unsigned bits = 0;
      for (std::size_t j = i; j < i + 3; ++j) {
        bits = bits << 8U | (j < line.size() ? static_cast<unsigned char>(line[j]) : 0U);
      }
      for (const unsigned shift : {18U, 12U, 6U, 0U}) text += digit(bits >> shift & 63U);
    }
    text += "\n";
  }
  return text + zero + "\nend\n";
}

// Encodes with yEnc: adds 42 to each byte. A byte that a line cannot contain is written as "=" and
// the byte plus 64.
std::string Yenc(std::string_view data, const std::string& name) {
  const std::string size = std::to_string(data.size());
  std::string text = "=ybegin line=64 size=" + size + " name=" + name + "\n";
  std::string line;
  for (const char c : data) {
    const auto code = static_cast<char>(static_cast<unsigned char>(c) + 42U);
    const bool is_critical = code == '\0' || code == '\n' || code == '\r' || code == '=';
    line += is_critical ? std::string{'=', static_cast<char>(code + 64)} : std::string{code};
    if (line.size() >= 64) text += std::exchange(line, {}) + "\n";
  }
  return text + line + "\n=yend size=" + size + "\n";
}

PackedFile OnlyFile(const std::string& text) {
  std::vector<PackedFile> files = FindPackedFiles(text);
  EXPECT_THAT(files, SizeIs(1)) << text;
  return files.empty() ? PackedFile{} : files.front();
}

TEST(Uuencode, IsDecoded) {
  const PackedFile file =
      OnlyFile("begin 644 cat.txt\n#0V%T\n`\nend\n");  // the usual example of the encoding
  EXPECT_EQ(file.packing, Packing::kUuencode);
  EXPECT_EQ(file.name, "cat.txt");
  EXPECT_EQ(file.bytes, "Cat");
  EXPECT_TRUE(file.is_whole);
  EXPECT_EQ(file.begin, 0U);
  for (std::size_t size = 0; size < kAllBytes.size(); size += size < 100 ? 1 : 37) {
    const std::string data = kAllBytes.substr(0, size);
    for (const char zero : {'`', ' '}) {
      EXPECT_EQ(OnlyFile(Uuencoded(data, "a", zero)).bytes, data) << size;
    }
  }
}

TEST(Uuencode, LineEndsAndTextAroundDoNotMatter) {
  const std::string code = Uuencoded(kAllBytes, "a b.bin");
  std::string crlf;
  for (const char c : code) crlf += c == '\n' ? "\r\n" : std::string(1, c);
  for (const std::string& text : {code, crlf, "hello\n" + code + "bye\n", "begin\n" + code}) {
    EXPECT_EQ(OnlyFile(text).bytes, kAllBytes);
    EXPECT_EQ(OnlyFile(text).name, "a b.bin");
  }
  const PackedFile file = OnlyFile("hello\n" + code + "bye\n");
  EXPECT_EQ(file.begin, 6U);
  EXPECT_EQ(file.end, 6 + code.size());
}

TEST(Uuencode, BlanksThatAreCutOffAndChecksumsAreAllowed) {
  EXPECT_EQ(OnlyFile("begin 644 a\n#    \n \nend\n").bytes, std::string(3, '\0'));
  EXPECT_EQ(OnlyFile("begin 644 a\n#\n`\nend\n").bytes, std::string(3, '\0'));
  EXPECT_EQ(OnlyFile("begin 644 a\n#0V%TX\n`\nend\n").bytes, "Cat");
}

TEST(Uuencode, OtherTextIsNoFile) {
  for (const char* const text :
       {"", "begin", "begin ", "begin 644\n", "begin 644 \n#0V%T\nend\n", "begin x a\n#0V%T\nend\n",
        "begin 64 a\n#0V%T\nend\n", "begin 77777 a\n#0V%T\nend\n", "begin -44 a\n#0V%T\nend\n",
        " begin 644 a\n#0V%T\nend\n", "xbegin 644 a\n#0V%T\nend\n", "begin 644 a",
        "begin 644 of these things\nand more of them\n"}) {
    EXPECT_THAT(FindPackedFiles(text), IsEmpty()) << text;
  }
}

TEST(Uuencode, ALineShorterThanItsCountIsFilledWithZeros) {
  EXPECT_EQ(OnlyFile("begin 644 a\n_0V%T\n`\nend\n").bytes, "Cat" + std::string(60, '\0'));
}

TEST(Uuencode, ALineLongerThanItsCountEndsTheFile) {
  const PackedFile file = OnlyFile("begin 644 a\n#0V%T\n#0V%T0V%T0V%T\nend\n");
  EXPECT_EQ(file.bytes, "Cat");
  EXPECT_FALSE(file.is_whole);
}

TEST(Uuencode, TruncatedTextGivesTheBytesBeforeTheCut) {
  const std::string code = Uuencoded(kAllBytes, "a.bin");
  for (std::size_t size = 0; size + 1 < code.size(); ++size) {
    const std::vector<PackedFile> files = FindPackedFiles(code.substr(0, size));
    if (files.empty()) {
      EXPECT_LT(size, std::string_view("begin 644 a.bin\nM").size());
      continue;
    }
    const std::string& bytes = files.front().bytes;
    ASSERT_THAT(files, SizeIs(1));
    // A cut last line is filled with zeros, so its bytes are not compared.
    const std::size_t whole_lines = bytes.size() < 45 ? 0 : bytes.size() - 45;
    EXPECT_EQ(bytes.substr(0, whole_lines), kAllBytes.substr(0, whole_lines)) << size;
    EXPECT_EQ(files.front().is_whole, size + 1 == code.size()) << size;
  }
  EXPECT_TRUE(OnlyFile(code.substr(0, code.size() - 1)).is_whole);
}

TEST(Uuencode, ANestedFileIsPartOfTheOuterOne) {
  const std::string inner = Uuencoded("inner", "inner.txt");
  EXPECT_EQ(OnlyFile(Uuencoded(inner, "outer.uue")).bytes, inner);
  // A second "begin" line among the lines of a file ends that file.
  const std::vector<PackedFile> files =
      FindPackedFiles("begin 644 a\n#0V%T\n" + Uuencoded("hello", "b"));
  ASSERT_THAT(files, SizeIs(2));
  EXPECT_FALSE(files[0].is_whole);
  EXPECT_EQ(files[1].bytes, "hello");
}

TEST(Base64Block, IsDecoded) {
  const std::string block = "begin-base64 644 a b\naGVs\nbG8=\n====\n";
  const PackedFile file = OnlyFile("x\n" + block + "y\n");
  EXPECT_EQ(file.name, "a b");
  EXPECT_EQ(file.bytes, "hello");
  EXPECT_TRUE(file.is_whole);
  EXPECT_EQ(file.end, 2 + block.size());
  const PackedFile cut = OnlyFile("begin-base64 644 a\naGVs\n");
  EXPECT_EQ(cut.bytes, "hel");
  EXPECT_FALSE(cut.is_whole);
  EXPECT_THAT(FindPackedFiles("begin-base64 a\naGVs\n====\n"), IsEmpty());
}

TEST(YencBlock, IsDecoded) {
  // "hi" is 0x92 0x93. The bytes that give NUL, LF, CR and "=" when 42 is added are written as two
  // characters.
  const PackedFile file = OnlyFile(
      "=ybegin line=128 size=6 name=a b.bin \n\x92\x93=@=J=M=}\n"
      "=yend size=6\n");
  EXPECT_EQ(file.packing, Packing::kYenc);
  EXPECT_EQ(file.name, "a b.bin");
  EXPECT_EQ(file.bytes, "hi\xD6\xE0\xE3\x13");
  EXPECT_TRUE(file.is_whole);
  for (std::size_t size = 0; size < kAllBytes.size(); size += 41) {
    const std::string data = kAllBytes.substr(0, size);
    EXPECT_EQ(OnlyFile(Yenc(data, "a")).bytes, data);
    EXPECT_TRUE(OnlyFile(Yenc(data, "a")).is_whole);
  }
}

TEST(YencBlock, OfSeveralPartsHasAnExtraLine) {
  const PackedFile file = OnlyFile(
      "=ybegin part=1 line=128 size=9 name=a\n=ypart begin=1 end=2\n"
      "\x92\x93\n=yend size=2 part=1\n");
  EXPECT_EQ(file.bytes, "hi");
  EXPECT_TRUE(file.is_whole);
}

TEST(YencBlock, InvalidSizeGivesNoFile) {
  for (const char* const size : {"-1", "", "x", "99999999999999999999"}) {
    EXPECT_THAT(FindPackedFiles("=ybegin line=128 size=" + std::string(size) +
                                " name=a\n\x92\n=yend size=1\n"),
                IsEmpty())
        << size;
  }
  EXPECT_THAT(FindPackedFiles("=ybegin line=128 size=1\n\x92\n=yend size=1\n"), IsEmpty());
  EXPECT_THAT(FindPackedFiles("=ybegin size=1 name=\n\x92\n=yend size=1\n"), IsEmpty());
}

TEST(YencBlock, SizeAtTheEndTellsWhetherItIsWhole) {
  for (const char* const size : {"2", "0", "-1", "18446744073709551615", "99999999999999999999"}) {
    const PackedFile file =
        OnlyFile("=ybegin line=128 size=1 name=a\n\x92\n=yend size=" + std::string(size) + "\n");
    EXPECT_EQ(file.bytes, "h");
    EXPECT_FALSE(file.is_whole) << size;
  }
}

TEST(YencBlock, TruncatedTextGivesTheBytesBeforeTheCut) {
  const std::string code = Yenc(kAllBytes, "a.bin");
  const std::size_t body = code.find('\n') + 1;
  const std::size_t end = code.find("\n=yend");
  for (std::size_t size = 0; size < end; ++size) {
    const std::vector<PackedFile> files = FindPackedFiles(code.substr(0, size));
    EXPECT_EQ(files.size(), size >= body ? 1U : files.size()) << size;
    for (const PackedFile& file : files) {
      EXPECT_FALSE(file.is_whole) << size;
      const std::size_t sure =
          file.bytes.empty() ? 0 : file.bytes.size() - 1;  // the last code may be cut
      EXPECT_EQ(file.bytes.substr(0, sure), kAllBytes.substr(0, sure)) << size;
    }
  }
}

TEST(PackedFiles, StandInTheOrderOfTheText) {
  const std::vector<PackedFile> files =
      FindPackedFiles(Yenc("one", "1") + Uuencoded("two", "2") + "text\n" + Yenc("three", "3") +
                      "begin-base64 644 4\nZm91cg==\n====\n");
  std::vector<std::string> all;
  for (const PackedFile& file : files) all.push_back(file.name + file.bytes);
  EXPECT_THAT(all, testing::ElementsAre("1one", "2two", "3three", "4four"));
}

}  // namespace
}  // namespace zqv::cli
