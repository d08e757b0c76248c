#include "cli/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqv::cli {
namespace {

using testing::ElementsAre;

std::vector<std::string> Lines(const std::vector<Align>& columns, const std::vector<Row>& rows) {
  std::vector<std::string> lines;
  FormatTable(
      columns, rows.size(), [&](std::size_t i) { return rows[i]; },
      [&](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

TEST(FormatTableTest, AlignsColumns) {
  EXPECT_THAT(
      Lines({Align::kLeft, Align::kRight, Align::kLeft}, {{"a", "5", "x"}, {"bcd", "1000", "y"}}),
      ElementsAre("a       5  x", "bcd  1000  y"));
}

TEST(FormatTableTest, AlignsByDisplayWidth) {
  EXPECT_THAT(Lines({Align::kLeft, Align::kLeft}, {{"写真", "x"}, {"Ü", "y"}}),
              ElementsAre("写真  x", "Ü     y"));
}

TEST(FormatTableTest, LeavesEmptyColumnsOut) {
  EXPECT_THAT(Lines({Align::kLeft, Align::kLeft, Align::kLeft}, {{"a", "", "x"}, {"b", "", "y"}}),
              ElementsAre("a  x", "b  y"));
}

TEST(FormatTableTest, LeavesNoBlanksAtLineEnds) {
  EXPECT_THAT(Lines({Align::kLeft, Align::kLeft}, {{"a", "long"}, {"b", ""}}),
              ElementsAre("a  long", "b"));
}

TEST(FormatTableTest, AWideCellMovesItsOwnRowOnly) {
  const std::string wide(100, 'w');
  EXPECT_THAT(Lines({Align::kLeft, Align::kLeft}, {{wide, "x"}, {"b", "y"}}),
              ElementsAre(wide + "  x", "b" + std::string(59, ' ') + "  y"));
}

TEST(FormatTableTest, NoRowsGiveNoLines) { EXPECT_THAT(Lines({Align::kLeft}, {}), ElementsAre()); }

}  // namespace
}  // namespace zqv::cli
