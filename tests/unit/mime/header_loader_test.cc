#include "mime/header_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "mime/limits.h"

namespace zqv::test {
namespace {

using mime::HeaderEnd;
using ::testing::ElementsAreArray;

// A header and the expected result: its fields as "name
// value
// bytes", what ended the header, the body after it, and the rest of the text in which boundaries
// are searched.
struct HeaderRow {
  const char* name;
  std::string_view text;
  std::vector<std::string> fields;
  HeaderEnd ended_by;
  std::string_view body;
  std::string_view rest;
};

void PrintTo(const HeaderRow& row, std::ostream* out) { *out << row.name; }

class HeaderLoader : public ::testing::TestWithParam<HeaderRow> {};

TEST_P(HeaderLoader, ReadsAsListed) {
  const HeaderRow& row = GetParam();
  std::vector<mime::Field> fields;
  base::TextArena folded_values;
  mime::MessageLimits limits;
  mime::HeaderContext context{fields, folded_values, limits};
  const char* const end = row.text.data() + row.text.size();
  const mime::LoadedHeader loaded = mime::LoadHeader(row.text.data(), end, context);
  std::vector<std::string> shown;
  for (const mime::Field& field : fields) {
    shown.push_back(std::string(field.name).append("|").append(field.value) + "|" +
                    std::string(field.bytes));
  }
  EXPECT_THAT(shown, ElementsAreArray(row.fields));
  EXPECT_EQ(loaded.ended_by, row.ended_by);
  EXPECT_EQ(std::string_view(loaded.body, static_cast<std::size_t>(end - loaded.body)), row.body);
  EXPECT_EQ(std::string_view(loaded.rest, static_cast<std::size_t>(end - loaded.rest)), row.rest);
}

constexpr HeaderEnd kEmpty = HeaderEnd::kEmptyLine;
constexpr HeaderEnd kOther = HeaderEnd::kOtherLine;
constexpr HeaderEnd kEnd = HeaderEnd::kMessageEnd;

const HeaderRow kHeaders[] = {
    // clang-format off
    {"Nothing",              "",                     {},                           kEnd,   "", ""},
    {"EmptyLineFirst",       "\nbody",               {},                           kEmpty, "body", "body"},
    {"OneField",             "A: b\n\nbody",         {"A|b|A: b"},                 kEmpty, "body", "body"},
    {"CrLf",                 "A: b\r\n\r\nbody",     {"A|b|A: b"},                 kEmpty, "body", "body"},
    {"Cr",                   "A: b\r\rbody",         {"A|b|A: b"},                 kEmpty, "body", "body"},
    {"LfCr",                 "A: b\n\r\n\rbody",     {"A|b|A: b"},                 kEmpty, "body", "body"},
    {"TwoFields",            "A: b\nC: d\n\n",       {"A|b|A: b", "C|d|C: d"},     kEmpty, "", ""},
    {"BlanksAroundTheColon", "A \t:\t  b \n\n",      {"A|b |A \t:\t  b "},         kEmpty, "", ""},
    {"EmptyValue",           "A:\n\n",               {"A||A:"},                    kEmpty, "", ""},
    {"ColonsInTheValue",     "A: b: c\n\n",          {"A|b: c|A: b: c"},           kEmpty, "", ""},
    {"Folds",                "A: b\n \tc\n\td\n\n",  {"A|b c d|A: b\n \tc\n\td"},  kEmpty, "", ""},
    {"FoldOfBlanks",         "A: b\n \n\n",          {"A|b |A: b\n "},             kEmpty, "", ""},
    {"FoldAfterNothing",     "A:\n b\n\n",           {"A| b|A:\n b"},              kEmpty, "", ""},
    {"NulEndsAValue",        {"A: b\0c\n d\n\n", 11}, {{"A|b|A: b\0c\n d", 13}},   kEmpty, "", ""},
    {"NoField",              "A: b\nno field\nx",    {"A|b|A: b"},                 kOther, "no field\nx", "field\nx"},
    {"NoFieldFirst",         "no\nfield: x\n\n",     {},                           kOther, "no\nfield: x\n\n", "\nfield: x\n\n"},
    {"NoAsciiName",          "\xC3: b\n\n",          {},                           kOther, "\xC3: b\n\n", "\xC3: b\n\n"},
    {"BlankFirst",           " a\n\n",               {},                           kOther, " a\n\n", "a\n\n"},
    {"ColonFirst",           ": b\nA: c\n\n",        {"A|c|A: c"},                 kEmpty, "", ""},
    {"FoldAfterColonFirst",  ": b\n c\nA: d\n\n",    {"A| cd|A: d"},               kEmpty, "", ""},
    {"LastFieldIsLost",      "A: b\nC: d",           {"A|b|A: b"},                 kEnd,   "", ""},
    {"LastLineEndIsNoEnd",   "A: b\nC: d\n",         {"A|b|A: b"},                 kEnd,   "", ""},
    {"EndInAFold",           "A: b\n c",             {},                           kEnd,   "", ""},
    {"EndInAName",           "A: b\nC",              {"A|b|A: b"},                 kEnd,   "", ""},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Headers, HeaderLoader, ::testing::ValuesIn(kHeaders),
                         [](const auto& row) { return row.param.name; });

TEST(HeaderLoaderValues, LieInTheMessageUnlessTheyAreFolded) {
  const std::string_view text = "A: one\nB: two\n three\n\n";
  std::vector<mime::Field> fields;
  base::TextArena folded_values;
  mime::MessageLimits limits;
  mime::HeaderContext context{fields, folded_values, limits};
  mime::LoadHeader(text.data(), text.data() + text.size(), context);
  ASSERT_EQ(fields.size(), 2U);
  EXPECT_EQ(fields[0].value.data(), text.data() + 3);
  const char* const folded = fields[1].value.data();
  EXPECT_TRUE(folded < text.data() || folded >= text.data() + text.size());
  EXPECT_EQ(fields[1].value, "two three");
}

TEST(HeaderLoaderValues, AreCountedWhereverTheHeaderIs) {
  const std::string text = "A: one\nTo: " + std::string(mime::kMostEntries + 1, ',') + "\n\n";
  std::vector<mime::Field> fields;
  base::TextArena folded_values;
  mime::MessageLimits limits;
  mime::HeaderContext context{fields, folded_values, limits};
  EXPECT_THROW(mime::LoadHeader(text.data(), text.data() + text.size(), context),
               std::runtime_error);
}

}  // namespace
}  // namespace zqv::test
