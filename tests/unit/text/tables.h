// The tables of tests/data/tables: lines of a name, a tab and a number.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zqv::test {

// The rows of a file in their order; `base` is that of the numbers. Throws when it cannot be read.
std::vector<std::pair<std::string, std::uint32_t>> ReadTable(const std::string& file, int base);

}  // namespace zqv::test
