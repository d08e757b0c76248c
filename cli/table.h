// Aligned columns for a reader.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

enum class Align { kLeft, kRight };

// Escaped texts of one line each, one for each column.
using Row = std::vector<std::string>;

// Formats `count` rows and passes each line, without line end, to `print`. Two spaces separate
// columns. A column that is empty in all rows is omitted. `row` is called twice for each row, first
// to measure and then to print, so that a long table is never held in memory.
void FormatTable(const std::vector<Align>& columns, std::size_t count,
                 const std::function<Row(std::size_t)>& row,
                 const std::function<void(std::string_view)>& print);

}  // namespace zqv::cli
