// The rows of a verb, printed as aligned columns for a reader or as JSON for a program.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/output.h"
#include "cli/table.h"

namespace zqv::cli {

// The contents of a column. kText and kOptional are texts; an empty kOptional is shown as "-", so
// that a program can split the columns. kNumber is a decimal number. In JSON an empty value is
// null.
enum class ColumnKind { kText, kOptional, kNumber };

struct Column {
  const char* key;  // of the column's values in JSON
  ColumnKind kind;
};

struct Table {
  const char* key;  // of the list of rows in JSON
  std::vector<Column> columns;
  std::size_t count;
  // Returns a row, one text for each column, not escaped. It is called more than once for each row.
  std::function<Row(std::size_t)> row;
};

// Prints the table. `name` is the message's. On a terminal, lines are cut to its width.
void PrintTable(const std::string& name, const Table& table, bool json, Output* output);

}  // namespace zqv::cli
