#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <string>

#include "tests/interface/again.h"

namespace zqv::interface_test {
namespace {

std::string ThisProgram() {
  std::array<char, 4096> path{};
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return {path.data(), length};
}

// Waits for the process. Returns whether it ended in time and with exit status 0.
bool Waits(const PROCESS_INFORMATION& process, unsigned seconds) {
  const DWORD time = seconds == 0 ? INFINITE : seconds * 1000;
  const bool has_ended = WaitForSingleObject(process.hProcess, time) == WAIT_OBJECT_0;
  if (!has_ended) TerminateProcess(process.hProcess, 1);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return has_ended && code == 0;
}

}  // namespace

bool PassesAgain(unsigned seconds) {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string command = "\"" + ThisProgram() + "\" --gtest_filter=" + test->test_suite_name() +
                        "." + test->name() + " --gtest_output=";
  std::fflush(nullptr);
  STARTUPINFOA start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION process = {};
  const BOOL has_started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0,
                                          nullptr, nullptr, &start, &process);
  return has_started != 0 && Waits(process, seconds);
}

}  // namespace zqv::interface_test
