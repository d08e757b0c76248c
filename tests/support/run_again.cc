#include "tests/support/run_again.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#else
#include <filesystem>
#endif

#include <cstdint>
#include <cstdio>

// No header of macOS declares it.
extern "C" char** environ;

namespace zqv::test {

std::string ThisProgram() {
#if defined(__APPLE__)
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');  // with the NUL
  return _NSGetExecutablePath(path.data(), &size) == 0 ? path.c_str() : std::string();
#else
  return std::filesystem::read_symlink("/proc/self/exe");
#endif
}

bool Succeeds(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::fflush(nullptr);
  pid_t child = 0;
  int status = -1;
  return posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0 &&
         waitpid(child, &status, 0) == child && status == 0;
}

std::string PresentTestAlone() {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  return std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
}

}  // namespace zqv::test
