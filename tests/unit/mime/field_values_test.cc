// Every field of the test messages and samples, read by every reader of values beside the MIME
// library's own, in the C locale and in one with UTF-8.
#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/unit/mime/value_difference.h"

namespace zqv::test {
namespace {

// Calls visit(value) for the value of each line of a file that could be a header's, with the folded
// lines that follow it.
template <class Visit>
void ForEachValue(const std::filesystem::path& file, Visit visit) {
  std::ifstream stream(file, std::ios::binary);
  std::string value;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::size_t text = line.find_first_not_of(" \t");
    if (text != 0 && text != std::string::npos) {
      value += " " + line.substr(text);
      continue;
    }
    if (!value.empty()) visit(value);
    const std::size_t colon = line.find(':');
    const std::size_t start =
        line.find_first_not_of(' ', colon == std::string::npos ? 0 : colon + 1);
    value = start == std::string::npos ? "" : line.substr(start);
  }
  if (!value.empty()) visit(value);
}

void ExpectNoDifference(const char* locale) {
  ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
  std::size_t values = 0;
  for (const char* folder : {ZQV_SAMPLES, ZQV_MESSAGES}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() != ".eml") continue;
      ForEachValue(entry.path(), [&](const std::string& value) {
        ++values;
        EXPECT_EQ(ValueDifference(value), "") << entry.path() << ": " << value;
      });
    }
  }
  std::setlocale(LC_ALL, "C");
  EXPECT_GT(values, 500U);
}

TEST(FieldValues, AreReadAsTheLibraryDoesInTheCLocale) { ExpectNoDifference("C"); }
TEST(FieldValues, AreReadAsTheLibraryDoesInAUtf8Locale) { ExpectNoDifference("C.UTF-8"); }

}  // namespace
}  // namespace zqv::test
