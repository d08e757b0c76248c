// Reads the tables in tests/data/tables. Each of their lines has a name, a tab and a number.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zqv::test {

// The rows of a file in the file's order. `base` is the base of the numbers, 10 or 16. Throws when
// the file cannot be read.
std::vector<std::pair<std::string, std::uint32_t>> ReadTable(const std::string& file, int base);

}  // namespace zqv::test
