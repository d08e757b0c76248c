#include "email/file_type.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zqv::test {
namespace {

struct FileTypeRow {
  const char* name;
  std::string data;
  std::string_view extension;
};

void PrintTo(const FileTypeRow& row, std::ostream* out) { *out << row.name; }

class FileTypeOf : public ::testing::TestWithParam<FileTypeRow> {};

TEST_P(FileTypeOf, GivesItsExtension) {
  EXPECT_EQ(email::FindExtension(GetParam().data), GetParam().extension);
}

std::string JfifAt(std::size_t offset) { return std::string(offset, 'x') + "JFIF"; }

const FileTypeRow kFileTypes[] = {
    // clang-format off
    {"Empty",                  "",                          ""},
    {"FiveBytes",              "GIF89",                     ""},
    {"SixBytes",               "GIF89a",                    ".gif"},
    {"Html",                   "<html>",                    ".html"},
    {"HtmlWithMore",           "<html><body>",              ".html"},
    {"HtmlWithAttributes",     "<html lang=en>",            ""},
    {"HtmlBehindABlank",       " <html>",                   ""},
    {"GifInLowerCase",         "gif89a",                    ""},
    {"Bmp",                    "BM\x01\x02\x03\x04",        ".bmp"},
    {"Png",                    "\x89PNG\r\n",               ".png"},
    {"PngAtTheStart",          "PNG\r\n\x1A\n",             ""},
    {"TiffBigEndian",          {"MM\0*\0\0", 6},            ".tif"},
    {"TiffLittleEndian",       {"II*\0\0\0", 6},            ".tif"},
    {"JfifAt6",                JfifAt(6),                   ".jpg"},
    {"JfifAt0",                "JFIF  ",                    ".jpg"},
    {"JfifAt29",               JfifAt(29),                  ".jpg"},
    {"JfifAt30",               JfifAt(30),                  ""},
    {"JfifAt6AndAt40",         JfifAt(6) + JfifAt(30),      ".jpg"},
    {"JfifCutOff",             JfifAt(27).substr(0, 30),    ""},
    {"JfifInLowerCase",        "xxxxxxjfif",                ""},
    {"GifBeforeJfif",          "GIF89aJFIF",                ".gif"},
    {"PngBehindAB",            "BPNGxx",                    ".png"},
    {"BmpBeforePng",           "BMPNGx",                    ".bmp"},
    {"Pdf",                    "%PDF-1.4",                  ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Rows, FileTypeOf, ::testing::ValuesIn(kFileTypes),
                         [](const auto& row) { return row.param.name; });

TEST(FileType, PngIgnoresTheFirstByte) {
  for (int first = 0; first < 256; ++first) {
    const std::string data = static_cast<char>(first) + std::string("PNG\r\n");
    EXPECT_EQ(email::FindExtension(data), ".png") << first;
  }
}

TEST(FileType, HtmlTagInCapitalsIsUnknown) {
  EXPECT_EQ(email::FindExtension("<HTML>"), "");
  EXPECT_EQ(email::FindExtension("<Html>"), "");
}

}  // namespace
}  // namespace zqv::test
