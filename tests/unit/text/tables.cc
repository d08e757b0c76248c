#include "tests/unit/text/tables.h"

#include <fstream>
#include <stdexcept>

namespace zqv::test {

std::vector<std::pair<std::string, std::uint32_t>> ReadTable(const std::string& file, int base) {
  std::ifstream stream(std::string(ZQV_TABLES) + "/" + file);
  if (!stream) throw std::runtime_error("no table " + file);
  std::vector<std::pair<std::string, std::uint32_t>> rows;
  for (std::string name, number; std::getline(stream, name, '\t') && std::getline(stream, number);)
    rows.emplace_back(name, static_cast<std::uint32_t>(std::stoul(number, nullptr, base)));
  return rows;
}

}  // namespace zqv::test
