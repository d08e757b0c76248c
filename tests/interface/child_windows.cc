// Windows has no fork, so InChild runs the current test again in a new process, which skips all
// bodies but one and ends after that one. A file carries the text to the parent.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>

#include "tests/interface/again.h"
#include "tests/interface/child.h"
#include "tests/interface/files.h"

namespace zqv::interface_test {
namespace {

// Environment variable with the number of the body that the process runs, from 1.
constexpr const char* kNumber = "ZQV_CHILD";
// Environment variable with the path of the file for the child's text.
constexpr const char* kTextFile = "ZQV_CHILD_TEXT";

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

std::string TextFromChild(const std::string& configuration,
                          const std::function<std::string()>& body, unsigned seconds) {
  if (const char* const path = std::getenv(kTextFile)) {
    InChild(
        configuration, [&] { std::ofstream(path, std::ios::binary) << body(); }, seconds);
    return {};  // this process runs another body
  }
  const TemporaryFolder folder;
  const std::string path = folder.Path("text");
  SetEnvironmentVariableA(kTextFile, path.c_str());
  InChild(
      configuration, [] {}, seconds);
  SetEnvironmentVariableA(kTextFile, nullptr);
  return ReadWholeFile(path);
}

}  // namespace zqv::interface_test
