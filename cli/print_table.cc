#include "cli/print_table.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/print_json.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

JsonValue DescribeCell(const std::string& cell, ColumnKind kind) {
  if (cell.empty()) return {};
  if (kind == ColumnKind::kNumber) return std::strtoull(cell.c_str(), nullptr, 10);
  return cell;
}

JsonValue DescribeRows(const Table& table) {
  JsonValue rows = JsonValue::array();
  for (std::size_t i = 0; i < table.count; ++i) {
    const Row cells = table.row(i);
    JsonValue& row = rows.emplace_back(JsonValue::object());
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      row[table.columns[c].key] = DescribeCell(cells[c], table.columns[c].kind);
    }
  }
  return rows;
}

std::string SafeCell(const std::string& cell, ColumnKind kind) {
  std::string safe = SafeText(std::string_view(cell), Lines::kOne);
  return safe.empty() && kind == ColumnKind::kOptional ? "-" : safe;
}

}  // namespace

void PrintTable(const std::string& name, const Table& table, bool json, Output* output) {
  if (json) {
    PrintDocument(name, table.key, DescribeRows(table), output);
    return;
  }
  std::vector<Align> columns;
  for (const Column& column : table.columns) {
    columns.push_back(column.kind == ColumnKind::kNumber ? Align::kRight : Align::kLeft);
  }
  const auto row = [&](std::size_t i) {
    Row cells = table.row(i);
    for (std::size_t c = 0; c < cells.size(); ++c) {
      cells[c] = SafeCell(cells[c], table.columns[c].kind);
    }
    return cells;
  };
  const std::optional<std::size_t> width = Output::Width();
  FormatTable(columns, table.count, row, [&](std::string_view line) {
    output->PrintLine(width ? CutToWidth(line, *width) : std::string(line));
  });
}

}  // namespace zqv::cli
