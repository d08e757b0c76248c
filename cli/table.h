// Aligned columns for a reader.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

enum class Align { kLeft, kRight };

// Safe text of one line each, one for every column.
using Row = std::vector<std::string>;

// Hands `count` rows to `print` as lines without line ends, two spaces between columns. A column
// that is empty in all rows takes no place. `row` is asked for each row twice, to measure and to
// print, so that a long table is never held in memory.
void FormatTable(const std::vector<Align>& columns, std::size_t count,
                 const std::function<Row(std::size_t)>& row,
                 const std::function<void(std::string_view)>& print);

}  // namespace zqv::cli
