#include "cli/file_name.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqv::cli {
namespace {

struct NameCase {
  const char* test_name;
  std::string name;
  std::string clean;
};

std::ostream& operator<<(std::ostream& out, const NameCase& c) { return out << c.test_name; }

std::string Repeat(const std::string& text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

class CleanFileNameTest : public testing::TestWithParam<NameCase> {};

TEST_P(CleanFileNameTest, Gives) { EXPECT_EQ(CleanFileName(GetParam().name), GetParam().clean); }

std::string NameOfCase(const testing::TestParamInfo<NameCase>& info) {
  return info.param.test_name;
}

INSTANTIATE_TEST_SUITE_P(Harmless, CleanFileNameTest,
                         testing::ValuesIn(std::vector<NameCase>{
                             {"Plain", "report.pdf", "report.pdf"},
                             {"BlankInside", "your message.eml", "your message.eml"},
                             {"SeveralDots", "archive.tar.gz", "archive.tar.gz"},
                             {"Umlauts", "Übersicht Süd.png", "Übersicht Süd.png"},
                             {"ColonAfterAWord", "Re: plan.txt", "Re: plan.txt"},
                         }),
                         NameOfCase);

INSTANTIATE_TEST_SUITE_P(Paths, CleanFileNameTest,
                         testing::ValuesIn(std::vector<NameCase>{
                             {"Upwards", "../../x", "x"},
                             {"FromTheTop", "/etc/passwd", "passwd"},
                             {"Backslashes", "..\\..\\x.txt", "x.txt"},
                             {"Mixed", "a/b\\c/d.txt", "d.txt"},
                             {"FolderAlone", "a/b/", "b"},
                             {"Drive", "C:\\x", "x"},
                             {"DriveWithoutFolder", "c:x", "x"},
                             {"TwoDrives", "C:D:x", "x"},
                             {"DriveAndBlank", " C: .x", "x"},
                             {"DriveBuiltByRemoval", "C\x01:x", "x"},
                             {"SlashesAlone", "///", "attachment"},
                             {"UpwardsAlone", "..", "attachment"},
                             {"HereAlone", ".", "attachment"},
                             {"UpwardsBuiltByRemoval", ".\x7F.", "attachment"},
                         }),
                         NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Characters, CleanFileNameTest,
    testing::ValuesIn(std::vector<NameCase>{
        {"Controls", "a\x01\x1B[31m\n\t\x7F.txt", "a[31m.txt"},
        {"Nul", std::string("a\0b.txt", 7), "ab.txt"},
        {"C1Controls", "a\xC2\x80\xC2\x9F.txt", "a.txt"},
        {"RightToLeftOverride", "annexe\u202Egpj.exe", "annexegpj.exe"},
        {"EveryOverride", "a\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069z", "az"},
        {"Marks", "a\u061C\u200E\u200Fz.txt", "az.txt"},
        {"NeighboursOfTheOverrides", "a\u2027\u202F\u205Fz", "a\u2027\u202F\u205Fz"},
        {"NoText", "caf\xE9.txt", "caf_.txt"},
        {"CutSequence", "a\xE2\x82", "a__"},
        {"DotsAndBlanksAtTheEnds", " . .x.y. . ", "x.y"},
        {"HiddenFile", ".profile", "profile"},
        {"OnlyHidden", "\x01\u202E ..", "attachment"},
        {"Empty", "", "attachment"},
    }),
    NameOfCase);

INSTANTIATE_TEST_SUITE_P(Devices, CleanFileNameTest,
                         testing::ValuesIn(std::vector<NameCase>{
                             {"Con", "con", "_con"},
                             {"Capitals", "AUX", "_AUX"},
                             {"Prn", "prn", "_prn"},
                             {"NulWithExtension", "nul.tar.gz", "_nul.tar.gz"},
                             {"BlankBeforeExtension", "con .txt", "_con .txt"},
                             {"Com1", "com1", "_com1"},
                             {"Lpt9WithExtension", "Lpt9.doc", "_Lpt9.doc"},
                             {"ConsoleInput", "conin$", "_conin$"},
                             {"LongerWord", "console.txt", "console.txt"},
                             {"ComWithoutNumber", "com", "com"},
                             {"ComWithTwoNumbers", "com11", "com11"},
                             {"AsExtension", "x.con", "x.con"},
                             {"BuiltByRemoval", "c\u200Eon", "_con"},
                             {"BuiltByTheCut", "con" + Repeat(" ", 300) + "x", "_con"},
                         }),
                         NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Lengths, CleanFileNameTest,
    testing::ValuesIn(std::vector<NameCase>{
        {"Exactly200", Repeat("a", 196) + ".txt", Repeat("a", 196) + ".txt"},
        {"OneMore", Repeat("a", 197) + ".txt", Repeat("a", 196) + ".txt"},
        {"FourThousand", Repeat("a", 3996) + ".pdf", Repeat("a", 196) + ".pdf"},
        {"WithoutExtension", Repeat("b", 4000), Repeat("b", 200)},
        {"LongExtension", "a." + Repeat("c", 300), "a." + Repeat("c", 198)},
        // The 196 bytes before the extension hold 65 characters of three bytes.
        {"ThreeByteSigns", Repeat("€", 100) + ".txt", Repeat("€", 65) + ".txt"},
        {"BlankAtTheCut", Repeat("a", 195) + " " + Repeat("b", 50) + ".txt",
         Repeat("a", 195) + ".txt"},
        {"DeviceOf200", "con." + Repeat("d", 196), "_con." + Repeat("d", 195)},
    }),
    NameOfCase);

TEST(FileNamesTest, TellsEqualNamesApart) {
  FileNames names;
  EXPECT_EQ(names.Take("a.txt"), "a.txt");
  EXPECT_EQ(names.Take("a.txt"), "a (2).txt");
  EXPECT_EQ(names.Take("a.txt"), "a (3).txt");
  EXPECT_EQ(names.Take("b.txt"), "b.txt");
}

TEST(FileNamesTest, IgnoresCaseAndKeepsTheSpelling) {
  FileNames names;
  EXPECT_EQ(names.Take("Report.PDF"), "Report.PDF");
  EXPECT_EQ(names.Take("report.pdf"), "report (2).pdf");
}

TEST(FileNamesTest, StepsOverNamesThatAreTaken) {
  FileNames names;
  EXPECT_EQ(names.Take("a (2).txt"), "a (2).txt");
  EXPECT_EQ(names.Take("a.txt"), "a.txt");
  EXPECT_EQ(names.Take("a.txt"), "a (3).txt");
  EXPECT_EQ(names.Take("a (3).txt"), "a (3) (2).txt");
}

TEST(FileNamesTest, NumbersNamesWithoutExtension) {
  FileNames names;
  EXPECT_EQ(names.Take("attachment"), "attachment");
  EXPECT_EQ(names.Take("attachment"), "attachment (2)");
  EXPECT_EQ(names.Take("Mr. Smith writes"), "Mr. Smith writes");
  EXPECT_EQ(names.Take("Mr. Smith writes"), "Mr. Smith writes (2)");
}

}  // namespace
}  // namespace zqv::cli
