// Every field of the test messages and samples, parsed by each of our value parsers and by
// mimetic's, in the C locale and in a UTF-8 locale.
#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/unit/mime/value_difference.h"

namespace zqv::test {
namespace {

// Calls visit(value) for each line of a file that could be a header field, with the value of that
// field. The value includes the folded lines after it.
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

TEST(FieldValues, AreReadAsMimeticDoesInTheCLocale) { ExpectNoDifference("C"); }
TEST(FieldValues, AreReadAsMimeticDoesInAUtf8Locale) { ExpectNoDifference("C.UTF-8"); }

}  // namespace
}  // namespace zqv::test
