#include "tests/interface/again.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace zqv::interface_test {
namespace {

// The command that starts this program: its path, and before that the emulator's when it is built
// for another processor.
std::vector<std::string> Command() {
  std::istringstream emulator(ZQV_EMULATOR);
  std::vector<std::string> words{std::istream_iterator<std::string>(emulator), {}};
  words.push_back(std::filesystem::read_symlink("/proc/self/exe"));
  return words;
}

}  // namespace

bool PassesAgain(unsigned) {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::vector<std::string> words = Command();
  words.push_back(std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name());
  words.emplace_back("--gtest_output=");
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::fflush(nullptr);
  pid_t child = 0;
  int status = -1;
  return posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0 &&
         waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace zqv::interface_test
