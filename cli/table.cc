#include "cli/table.h"

#include <algorithm>

#include "cli/text.h"

namespace zqv::cli {
namespace {

// A wider cell shifts the rest of its own row and does not widen the column.
constexpr std::size_t kWidestColumn = 60;
constexpr std::string_view kGap = "  ";

std::vector<std::size_t> Measure(std::size_t columns, std::size_t count,
                                 const std::function<Row(std::size_t)>& row) {
  std::vector<std::size_t> widths(columns, 0);
  for (std::size_t i = 0; i < count; ++i) {
    const Row cells = row(i);
    for (std::size_t c = 0; c < columns; ++c) {
      widths[c] = std::max(widths[c], std::min(DisplayWidth(cells[c]), kWidestColumn));
    }
  }
  return widths;
}

std::string Line(const Row& cells, const std::vector<Align>& columns,
                 const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (widths[c] == 0) continue;
    if (c > 0) line += kGap;
    const std::size_t width = DisplayWidth(cells[c]);
    const std::string padding(widths[c] - std::min(width, widths[c]), ' ');
    line += columns[c] == Align::kRight ? padding + cells[c] : cells[c] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace

void FormatTable(const std::vector<Align>& columns, std::size_t count,
                 const std::function<Row(std::size_t)>& row,
                 const std::function<void(std::string_view)>& print) {
  const std::vector<std::size_t> widths = Measure(columns.size(), count, row);
  for (std::size_t i = 0; i < count; ++i) print(Line(row(i), columns, widths));
}

}  // namespace zqv::cli
