// There is no fork there: the present test runs once more in a process that leaves out all of its
// children but this one, and ends with it. What a child shares with its parent does not get there.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tests/interface/again.h"
#include "tests/interface/child.h"

namespace zqv::interface_test {
namespace {

// Tells a process which of the test's children it is to be, counted from 1.
constexpr const char* kNumber = "ZQV_CHILD";

int FailedParts() {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  return test->result()->Failed() ? test->result()->total_part_count() : 0;
}

bool IsGood(const std::function<void()>& body) {
  const int failed_before = FailedParts();
  try {
    body();
  } catch (const std::exception& error) {
    std::printf("uncaught: %s\n", error.what());
    return false;
  } catch (...) {
    std::printf("uncaught: a value that is no std::exception\n");
    return false;
  }
  return FailedParts() == failed_before;
}

}  // namespace

void InChild(const std::string& configuration, const std::function<void()>& body,
             unsigned seconds) {
  static int number = 0;
  ++number;
  if (const char* const wanted = std::getenv(kNumber)) {
    if (std::atoi(wanted) != number) return;
    const bool is_good = IsGood(body);
    std::fflush(nullptr);
    _exit(is_good ? 0 : 1);
  }
  SetEnvironmentVariableA(kNumber, std::to_string(number).c_str());
  EXPECT_TRUE(PassesAgain(seconds)) << configuration;
  SetEnvironmentVariableA(kNumber, nullptr);
}

}  // namespace zqv::interface_test
