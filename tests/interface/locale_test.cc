// Results do not depend on the locale of the application.
//
// An application sets its locale before it loads plug-ins, so each test does the same in a child
// process. The build creates the locales; see cmake/test_locales.cmake.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "standin/mirror.h"
#include "tests/interface/child.h"
#include "tests/interface/files.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

// Whether the locale reads "1,5" as one and a half.
bool HasDecimalComma() { return std::strtod("1,5", nullptr) == 1.5; }

// The upper case of "i". The call goes through a pointer, because compilers compute toupper('i')
// themselves.
int CapitalI() {
  int (*const volatile to_capital)(int) = std::toupper;
  return to_capital('i');
}

std::string Written(int number) {
  std::ostringstream out;
  out << number;
  return out.str();
}

// A C++ locale that writes a point after every third digit. No C locale can do this.
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

struct Row {
  const char* name;   // letters and digits only
  const char* needs;  // the locale's folder; empty when none is needed
  void (*enter)();
  // Tells whether the locale is in effect.
  bool (*is_in_force)();
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

// The C library never frees what it stores about LOCPATH when a C++ locale is created.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

void EnterStreams(const char* name) {
  if (__lsan_disable != nullptr) __lsan_disable();
  std::locale::global(std::locale(name));
  if (__lsan_enable != nullptr) __lsan_enable();
}

// Results are compared with those in the C locale, in which every program starts.
const Row kRows[] = {
    {"Utf8", "", [] { std::setlocale(LC_ALL, "C.UTF-8"); }, [] { return MB_CUR_MAX > 1; }},
    // In Turkish, "i" and "I" are not the lower and upper case of one letter.
    {"TurkishUtf8", "tr_TR.UTF-8", [] { std::setlocale(LC_ALL, "tr_TR.UTF-8"); },
     [] { return CapitalI() != 'I' && HasDecimalComma(); }},
    {"TurkishLatin5", "tr_TR.ISO-8859-9", [] { std::setlocale(LC_ALL, "tr_TR.ISO-8859-9"); },
     [] { return CapitalI() == 0xDD && HasDecimalComma(); }},
    {"GermanLatin1", "de_DE.ISO-8859-1", [] { std::setlocale(LC_ALL, "de_DE.ISO-8859-1"); },
     [] { return std::isalpha(0xE9) != 0 && HasDecimalComma(); }},
    {"GermanStreams", "de_DE.ISO-8859-1", [] { EnterStreams("de_DE.ISO-8859-1"); },
     [] { return Written(1234567) == "1.234.567" && HasDecimalComma(); }},
    {"TurkishStreams", "tr_TR.UTF-8", [] { EnterStreams("tr_TR.UTF-8"); },
     [] { return Written(1234567) == "1.234.567" && CapitalI() != 'I'; }},
    {"StreamsAlone", "",
     [] { std::locale::global(std::locale(std::locale::classic(), new Grouping)); },
     [] { return Written(1234567) == "1.234.567" && !HasDecimalComma(); }},
};

// Runs `body` in a session in a child process, in the locale of `row`, or in the C locale when it
// is null.
void InLocale(const Row* row, const std::function<void()>& body) {
  InChild(row == nullptr ? "C" : row->name, [&] {
    ASSERT_EQ(setenv("LOCPATH", ZQV_LOCALES, 1), 0);
    ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
    if (row != nullptr) {
      row->enter();
      ASSERT_TRUE(row->is_in_force());
    }
    // A message of one part looks its charset up twice, so one call can raise two exceptions.
    const Session session({}, Exceptions::kMayBeLost);
    body();
  });
}

class Locales : public ::testing::TestWithParam<Row> {
 protected:
  void SetUp() override {
    const std::string needed = GetParam().needs;
    if (!needed.empty() &&
        !std::filesystem::is_directory(std::string(ZQV_LOCALES) + "/" + needed)) {
      GTEST_SKIP() << "no locale " << needed << ": the package locales was missing at configure";
    }
  }
};

// The paths of the messages in samples and tests/corpus, sorted.
std::vector<std::string> MessagePaths() {
  std::vector<std::string> paths;
  for (const char* folder : {ZQV_SAMPLES, ZQV_CORPUS}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == ".eml") paths.push_back(entry.path().string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

// Everything that the library returns for a message, in one line.
std::string AllOf(const std::string& bytes, bool raises) {
  SetShared("MimeEmailZQV", "RaiseUnknownFormatExceptions", raises);
  const Constructed constructed = ConstructFromString(bytes);
  const Value stripped = Call(constructed.message, "SourceWithoutAttachments as String");
  return constructed.raised + " " + standin::Mirror(constructed.message).dump() + " " +
         standin::EscapeBytes(Show(stripped));
}

// Two lines for each message: with and without exceptions for unknown charsets.
std::vector<std::string> AllOfAll(const std::vector<std::string>& paths) {
  std::vector<std::string> lines;
  for (const std::string& path : paths) {
    const std::string bytes = ReadWholeFile(path);
    for (const bool raises : {false, true}) lines.push_back(AllOf(bytes, raises));
  }
  return lines;
}

std::string FirstDifference(std::string_view here, std::string_view in_c) {
  constexpr std::size_t kShown = 60;
  std::size_t at = 0;
  while (at < here.size() && at < in_c.size() && here[at] == in_c[at]) ++at;
  const std::size_t start = at - std::min(at, kShown);
  return "\nhere: " + std::string(here.substr(start, 2 * kShown)) +
         "\nin C: " + std::string(in_c.substr(start, 2 * kShown));
}

void WriteLines(const std::string& path, const std::vector<std::string>& lines) {
  std::ofstream file(path, std::ios::binary);
  for (const std::string& line : lines) file << line << '\n';
  file.close();
  EXPECT_TRUE(file.good());
}

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

TEST_P(Locales, GiveTheSameForEveryMessage) {
  const std::vector<std::string> paths = MessagePaths();
  ASSERT_GT(paths.size(), 200U);
  const TemporaryFolder folder;
  const std::string file = folder.Path("in-c");
  InLocale(nullptr, [&] { WriteLines(file, AllOfAll(paths)); });
  InLocale(&GetParam(), [&] {
    const std::vector<std::string> in_c = ReadLines(file);
    const std::vector<std::string> here = AllOfAll(paths);
    ASSERT_EQ(here.size(), in_c.size());
    for (std::size_t i = 0; i < here.size(); ++i) {
      EXPECT_TRUE(here[i] == in_c[i]) << paths[i / 2] << FirstDifference(here[i], in_c[i]);
    }
  });
}

// A message whose names are all in upper case. Mail compares them without regard to case.
constexpr std::string_view kCapitals =
    "MIME-VERSION: 1000.2000\n"
    "SUBJECT: =?ISO-8859-1?Q?Fa=E7ade?=\n"
    "DATE: FRI, 12 APRIL 2024 13:14:15 GMT\n"
    "CONTENT-TYPE: MULTIPART/MIXED; BOUNDARY=B\n"
    "\n"
    "--B\n"
    "CONTENT-TYPE: TEXT/PLAIN; CHARSET=ISO-8859-1\n"
    "CONTENT-TRANSFER-ENCODING: QUOTED-PRINTABLE\n"
    "\n"
    "Caf=E9\n"
    "--B\n"
    "CONTENT-TYPE: IMAGE/GIF\n"
    "CONTENT-DISPOSITION: INLINE; FILENAME=I.GIF\n"
    "CONTENT-ID: <dot>\n"
    "CONTENT-TRANSFER-ENCODING: BASE64\n"
    "\n"
    "R0lG\n"
    "--B\n"
    "CONTENT-TYPE: APPLICATION/ZIP\n"
    "CONTENT-DISPOSITION: ATTACHMENT; FILENAME=I.ZIP\n"
    "CONTENT-DESCRIPTION: I\n"
    "MIME-VERSION: 1000.2000\n"
    "\n"
    "PK\n"
    "--B--\n";

// The message with its field names in lower case.
std::string WithSmallNames(std::string_view message) {
  std::string result;
  std::istringstream lines{std::string(message)};
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(": ");
    for (std::size_t i = 0; colon != std::string::npos && i < colon; ++i) {
      if (line[i] >= 'A' && line[i] <= 'Z') line[i] = static_cast<char>(line[i] - 'A' + 'a');
    }
    result += line + "\n";
  }
  return result;
}

void ExpectWhatCapitalsSay(const std::string& bytes) {
  const Object message = Parse(bytes);
  EXPECT_EQ(ShowProperty(message, "Subject"), std::string("0x201 Fa\xE7") + "ade");
  EXPECT_EQ(ShowProperty(message, "PlainText"), "0x201 Caf\xE9");
  const Object date = ObjectOf(Get(message, "Date"));
  ASSERT_FALSE(date.IsNil());
  EXPECT_EQ(std::get<std::int64_t>(Get(date, "Month")), 4);
  EXPECT_EQ(std::get<std::int64_t>(Get(date, "Hour")), 13);

  ASSERT_EQ(ObjectOf(Call(message, "Inlines")).Size(), 1U);
  const Object dot = ObjectOf(Call(message, "Inlines", 0));
  EXPECT_EQ(ShowProperty(dot, "Filename"), "0x600 I.GIF");
  EXPECT_EQ(ShowProperty(dot, "contentId"), "0x600 <dot>");
  EXPECT_EQ(standin::BytesOf(Get(dot, "Data")), "GIF");

  ASSERT_EQ(ObjectOf(Call(message, "Attachments")).Size(), 1U);
  const Object archive = ObjectOf(Call(message, "Attachments", 0));
  EXPECT_EQ(ShowProperty(archive, "Filename"), "0x600 I.ZIP");
  EXPECT_EQ(ShowProperty(archive, "ContentDescription"), "0x600 I");
  EXPECT_EQ(ShowProperty(archive, "MimeVersion"), "0x600 1000.2000");
}

TEST_P(Locales, DoNotChangeHowNamesAreCompared) {
  for (const std::string& bytes : {std::string(kCapitals), WithSmallNames(kCapitals)}) {
    InLocale(nullptr, [&] { ExpectWhatCapitalsSay(bytes); });
    InLocale(&GetParam(), [&] { ExpectWhatCapitalsSay(bytes); });
  }
}

INSTANTIATE_TEST_SUITE_P(Each, Locales, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zqv::interface_test
