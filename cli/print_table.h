// A verb's rows, as aligned columns for a reader or as JSON for a program.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/output.h"
#include "cli/table.h"

namespace zqv::cli {

// What stands in a column. kText and kOptional are texts, an empty kOptional one is shown as "-",
// so that a program can tell the columns apart; kNumber is a decimal number. In JSON what is empty
// is null.
enum class ColumnKind { kText, kOptional, kNumber };

struct Column {
  const char* key;  // in JSON
  ColumnKind kind;
};

struct Table {
  const char* key;  // of the list of rows in JSON
  std::vector<Column> columns;
  std::size_t count;
  // One text for each column, not made safe yet. Asked for more than once.
  std::function<Row(std::size_t)> row;
};

// `name` is the message's; lines are cut where a terminal's end.
void PrintTable(const std::string& name, const Table& table, bool json, Output* output);

}  // namespace zqv::cli
