#include "tests/interface/files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zqv::interface_test {

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "zqv-interface-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) ADD_FAILURE() << "no temporary folder " << path_;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view bytes) const {
  std::ofstream file(Path(name), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  EXPECT_TRUE(file.good()) << name;
  return Path(name);
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zqv::interface_test
