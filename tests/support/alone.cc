#include "tests/support/alone.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace zqv::test {

bool IsAlone() {
  const auto* unit_test = ::testing::UnitTest::GetInstance();
  if (unit_test->test_to_run_count() == 1) return true;
  const auto* info = unit_test->current_test_info();
  std::string program = "/proc/self/exe";
  std::string filter =
      std::string("--gtest_filter=") + info->test_suite_name() + "." + info->name();
  std::string output = "--gtest_output=";
  char* const arguments[] = {program.data(), filter.data(), output.data(), nullptr};
  std::fflush(nullptr);
  pid_t child = 0;
  int status = -1;
  EXPECT_EQ(posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ), 0);
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "the test failed in its own process";
  return false;
}

}  // namespace zqv::test
