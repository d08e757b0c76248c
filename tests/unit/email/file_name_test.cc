#include "email/file_name.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "mime/message.h"
#include "tests/unit/base/log_capture.h"

namespace zqv::test {
namespace {

// Bodies whose first bytes determine the type of the file.
const std::string kPng = "\x89PNG\r\n\x1A\n";
const std::string kGif = "GIF89a";
const std::string kHtml = "<html>";
const std::string kOther = "something else";

std::string Jfif(std::size_t offset) { return std::string(offset, 'x') + "JFIF"; }

// A file name that is made up from the part's Content-ID and from the type of its data.
struct MadeUpRow {
  const char* name;
  std::string content_id;
  std::string data;
  std::string file_name;
};

void PrintTo(const MadeUpRow& row, std::ostream* out) { *out << row.name; }

class MadeUpName : public ::testing::TestWithParam<MadeUpRow> {};

TEST_P(MadeUpName, IsAsListed) {
  EXPECT_EQ(email::MakeUpFileName(GetParam().content_id, GetParam().data), GetParam().file_name);
}

const MadeUpRow kMadeUpNames[] = {
    // clang-format off
    {"NoIdAndGif",               "",                kGif,      "attachment.gif"},
    {"NoIdAndHtml",              "",                kHtml,     "attachment.html"},
    {"NoIdAndHtmlInCapitals",    "",                "<HTML>",  "attachment"},
    {"NoIdAndJfifAt6",           "",                Jfif(6),   "attachment.jpg"},
    {"NoIdAndJfifAt30",          "",                Jfif(30),  "attachment"},
    {"NoIdAndNoData",            "",                "",        "attachment"},
    {"Id",                       "<part1.12345>",   kPng,      "part1.12345.png"},
    {"IdOfUnknownData",          "<part1.12345>",   kOther,    "part1.12345"},
    {"IdWithTheExtension",       "<logo.png>",      kPng,      "logo.png"},
    {"IdWithItInCapitals",       "<LOGO.PNG>",      kPng,      "LOGO.PNG"},
    {"IdWithAnotherExtension",   "<logo.png>",      kGif,      "logo.png.gif"},
    {"IdThatIsTheExtension",     "<.png>",          kPng,      ".png.png"},
    {"IdThatEndsLikeIt",         "<xpng>",          kPng,      "xpng.png"},
    {"IdWithoutBrackets",        "part",            kPng,      "part.png"},
    {"IdWithoutTheLastBracket",  "<part",           kPng,      "part.png"},
    {"IdWithoutTheFirstBracket", "part>",           kPng,      "part.png"},
    {"IdInTwoPairs",             "<<part>>",        kPng,      "<part>.png"},
    {"BlankBeforeTheId",         " <part>",         kPng,      "part.png"},
    {"TabBeforeTheId",           "\t<part>",        kPng,      "part.png"},
    {"TwoBlanksBeforeTheId",     "  <part>",        kPng,      " <part.png"},
    {"BlankBehindTheId",         "<part> ",         kPng,      "part> .png"},
    {"EmptyPair",                "<>",              kPng,      "<>.png"},
    {"EmptyPairOfUnknownData",   "<>",              kOther,    "<>"},
    {"BlankAndEmptyPair",        " <>",             kPng,      "attachment.png"},
    {"OneByte",                  "<",               kPng,      "<.png"},
    {"TwoBytes",                 "<a",              kPng,      "<a.png"},
    {"ThreeBytes",               "<a>",             kPng,      "a.png"},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Rows, MadeUpName, ::testing::ValuesIn(kMadeUpNames),
                         [](const auto& row) { return row.param.name; });

std::string Shown(abi::Encoding encoding, std::string_view bytes) {
  char number[16];
  std::snprintf(number, sizeof number, "%08X ", encoding);
  return number + std::string(bytes);
}
std::string Ascii(std::string_view bytes) { return Shown(abi::kAscii, bytes); }
std::string Utf8(std::string_view bytes) { return Shown(abi::kUtf8, bytes); }
std::string MacRoman(std::string_view bytes) { return Shown(abi::kMacRoman, bytes); }

// All names that a header offers, the preferred one first: each as its encoding and bytes, or
// "empty".
std::vector<std::string> NamesOf(const std::string& header, std::string_view data = kOther) {
  const std::string text = header + "\n";
  const mime::Message message(text);
  const mime::Header fields = message.HeaderOf(message.top());
  email::FileNames names(fields, data);
  std::vector<std::string> shown;
  while (const std::optional<text::HeaderText> name = names.Next()) {
    shown.push_back(name->bytes().empty() ? "empty" : Shown(name->encoding(), name->bytes()));
    if (!name->unknown_charset.empty()) shown.back() += ", not " + name->unknown_charset;
  }
  return shown;
}

// The first name that is not empty.
std::string NameOf(const std::string& header, std::string_view data = kOther) {
  for (const std::string& name : NamesOf(header, data)) {
    if (name != "empty") return name;
  }
  return "none";
}

// The file name of a part whose parameter `filename*` has this value.
std::string NameOfExtended(const std::string& value) {
  return NameOf("Content-Disposition: attachment; filename*=" + value + "\n");
}

TEST(FileNames, AreOfferedInTheirOrder) {
  EXPECT_THAT(NamesOf("Content-Disposition: attachment; filename*=utf-8''4; filename=1\n"
                      "Content-Type: image/png; name=3; filename=2\nContent-ID: <5>\n"),
              ::testing::ElementsAre(Ascii("1"), Ascii("2"), Ascii("3"), Utf8("4"), Ascii("5")));
  EXPECT_THAT(NamesOf(""),
              ::testing::ElementsAre("empty", "empty", "empty", "empty", Ascii("attachment")));
}

TEST(FileNames, AreDecodedAndGetNoExtension) {
  EXPECT_EQ(NameOf("Content-Disposition: attachment; filename=\"=?utf-8?Q?caf=C3=A9?=\"\n", kPng),
            Utf8("caf\xC3\xA9"));
}

TEST(FileNames, KeepApostrophesAndBlanksInEachParameter) {
  const std::string disposition = "Content-Disposition: attachment; filename=";
  const std::string file_name = "Content-Type: image/png; filename=";
  const std::string name = "Content-Type: image/png; name=";
  for (const std::string& parameter : {disposition, file_name, name}) {
    EXPECT_EQ(NameOf(parameter + "\"'report.pdf'\"\n"), Ascii("'report.pdf'")) << parameter;
    EXPECT_EQ(NameOf(parameter + "'report.pdf'\n"), Ascii("'report.pdf'")) << parameter;
    EXPECT_EQ(NameOf(parameter + "\"  report.pdf\"\n"), Ascii("  report.pdf")) << parameter;
    EXPECT_EQ(NameOf(parameter + "\"'=?utf-8?Q?caf=C3=A9?='\"\n"), Utf8("'caf\xC3\xA9'"))
        << parameter;
    EXPECT_EQ(NameOf(parameter + "\"=?utf-8?Q?=22caf=C3=A9=22?=\"\n"), Utf8("\"caf\xC3\xA9\""))
        << parameter;
  }
}

TEST(FileNames, ComeFromTheFirstParameterThatHasOne) {
  const std::string type = "Content-Type: image/png; name=4; filename=2\n";
  const std::string only_name = "Content-Type: image/png; name=3\n";
  const std::string disposition = "Content-Disposition: attachment; filename*=utf-8''4";
  EXPECT_EQ(NameOf(type + disposition + "; filename=1\n"), Ascii("1"));
  EXPECT_EQ(NameOf(type + disposition + "; filename=\"\"\n"), Ascii("2"));
  EXPECT_EQ(NameOf(only_name + disposition + "\n"), Ascii("3"));
  EXPECT_EQ(NameOf(disposition + "\n"), Utf8("4"));
  EXPECT_EQ(NameOf("Content-ID: <5>\nContent-Disposition: attachment; filename*=\"\"\n"),
            Ascii("5"));
}

TEST(FileNames, ExtendedParameterKeepsPercentEscapes) {
  EXPECT_EQ(NameOfExtended("UTF-8''%E2%82%AC%20rates.pdf"), Utf8("%E2%82%AC%20rates.pdf"));
}

TEST(FileNames, ExtendedParameterIsInItsCharset) {
  EXPECT_EQ(NameOfExtended("iso-8859-15''caf\xE9"), Shown(0x020F, "caf\xE9"));
  EXPECT_EQ(NameOfExtended("x-unknown''abc.txt"), Shown(abi::kIsoLatin1, "abc.txt"));
}

TEST(FileNames, ExtendedParameterOfAnUnknownCharsetIsTakenWhole) {
  EXPECT_EQ(NameOfExtended("no-such''abc.txt"), Ascii("no-such''abc.txt, not no-such"));
  EXPECT_EQ(NameOfExtended("binary''abc.txt"), Ascii("binary''abc.txt"))
      << "a known charset, but without a text encoding";
}

TEST(FileNames, ExtendedParameterOfFewerThanFiveBytesIsTakenWhole) {
  EXPECT_EQ(NameOfExtended("0''a"), Ascii("0''a"));
  EXPECT_EQ(NameOfExtended("0''ab"), Shown(abi::kIsoLatin1, "ab"))
      << "five bytes, in the charset named 0";
}

TEST(FileNames, ExtendedParameterWithALanguageIsTakenWhole) {
  EXPECT_EQ(NameOfExtended("utf-8'en'name"), Ascii("utf-8'en'name"));
}

TEST(FileNames, ExtendedParameterIsCutAtTheFirstTwoApostrophes) {
  EXPECT_EQ(NameOfExtended("utf-8'''a''b"), Utf8("'a''b"));
}

TEST(FileNames, ExtendedParameterWithNothingBehindItsCharsetGivesAMadeUpName) {
  EXPECT_EQ(NameOfExtended("utf-8''"), Ascii("attachment"));
}

TEST(FileNames, ExtendedParameterThatIsNotAsciiIsLoggedAndLabelledSo) {
  const LogCapture log;
  EXPECT_EQ(NameOfExtended("us-ascii''caf\xE9"), Ascii("caf\xE9"));
  EXPECT_THAT(log.Text(), ::testing::HasSubstr(Logged({"Error: text is not ascii caf\xE9"})));
}

TEST(FileNames, AreMadeUpFromContentIdAndData) {
  EXPECT_EQ(NameOf("Content-Type: image/png\nContent-ID: <part1.12345>\n", kPng),
            Ascii("part1.12345.png"));
  EXPECT_EQ(NameOf("Content-Type: image/gif\n", kGif), Ascii("attachment.gif"));
  EXPECT_EQ(NameOf("Content-Type: image/x\nContent-ID: <caf\xE9>\n"), MacRoman("caf\xE9"));
}

struct TypeRow {
  const char* type;
  const char* text;
};

TEST(MimeTypeText, IsWhatThereIsOfTypeAndSubtype) {
  constexpr TypeRow kRows[] = {{"Image/PNG", "Image/PNG"},
                               {"image", "image"},
                               {"image/", "image"},
                               {"/png", "png"},
                               {"", ""},
                               {"a/b; c=d", "a/b"}};
  for (const TypeRow& row : kRows) {
    EXPECT_EQ(email::MimeTypeText(mime::ContentType(row.type)), row.text) << row.type;
  }
}

TEST(TrimStart, TakesBlanksAndNothingElse) {
  EXPECT_EQ(email::TrimStart(" \t a b "), "a b ");
  EXPECT_EQ(email::TrimStart("a"), "a");
  EXPECT_EQ(email::TrimStart(" \t"), "");
  EXPECT_EQ(email::TrimStart(""), "");
  EXPECT_EQ(email::TrimStart("\r\n a"), "\r\n a");
}

}  // namespace
}  // namespace zqv::test
