#include "tests/interface/files.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#include <direct.h>
#include <process.h>

#include <atomic>
#endif

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zqv::interface_test {

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "zqv-interface-XXXXXX").string()) {
#if defined(_WIN32)
  static std::atomic<int> number{0};  // several threads make some at once
  path_ += std::to_string(_getpid()) + "-" + std::to_string(++number);
  const bool is_made = _mkdir(path_.c_str()) == 0;
#else
  const bool is_made = mkdtemp(path_.data()) != nullptr;
#endif
  if (!is_made) ADD_FAILURE() << "no temporary folder " << path_;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::UrlPath(std::string_view name) const {
#if defined(_WIN32)
  return "/" + std::filesystem::path(Path(name)).generic_string();
#else
  return Path(name);
#endif
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view bytes) const {
  // A path and not its text, which would be read in a code page on Windows.
  std::ofstream file(std::filesystem::u8path(Path(name)), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  EXPECT_TRUE(file.good()) << name;
  return Path(name);
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zqv::interface_test
