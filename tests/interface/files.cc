#include "tests/interface/files.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#include <direct.h>
#include <process.h>

#include <atomic>
#include <cerrno>
#endif

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zqv::interface_test {

namespace {

// Creates a folder whose path begins with `start`. Returns its path; empty when it failed.
std::string MakeFolder(const std::string& start) {
#if defined(_WIN32)
  static std::atomic<int> number{0};  // several threads may create folders at once
  const std::string with_process = start + std::to_string(_getpid()) + "-";
  // An earlier process with the same number may have left folders.
  std::string path;
  do {
    path = with_process + std::to_string(++number);
    errno = 0;
  } while (_mkdir(path.c_str()) != 0 && errno == EEXIST);
  return errno == 0 ? path : std::string();
#else
  std::string path = start + "XXXXXX";
  return mkdtemp(path.data()) != nullptr ? path : std::string();
#endif
}

}  // namespace

TemporaryFolder::TemporaryFolder()
    : path_(MakeFolder((std::filesystem::temp_directory_path() / "zqv-interface-").string())) {
  if (path_.empty()) ADD_FAILURE() << "no temporary folder";
}

TemporaryFolder::~TemporaryFolder() {
  if (path_.empty()) return;
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
  // A path object, because on Windows a plain text would be read in the process's code page.
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
