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

// Waits for the process. Returns whether it ended in time and with exit code 0; otherwise prints
// the code, which tells a failed test (1) from a crash (0xC0000005 and the like).
bool Passes(const PROCESS_INFORMATION& process, unsigned seconds) {
  const DWORD time = seconds == 0 ? INFINITE : seconds * 1000;
  const bool has_ended = WaitForSingleObject(process.hProcess, time) == WAIT_OBJECT_0;
  if (!has_ended) TerminateProcess(process.hProcess, 1);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  if (!has_ended) {
    std::fprintf(stderr, "the process did not end within %u seconds\n", seconds);
  } else if (code != 0) {
    std::fprintf(stderr, "the process ended with exit code 0x%lX\n", code);
  }
  return has_ended && code == 0;
}

// Wine fails to start one process in some 4,000, with this error; the next attempt succeeds.
constexpr DWORD kWineFailed = ERROR_INTERNAL_ERROR;
constexpr int kAttempts = 3;

// Starts the process and fills `process`. Prints the system's error if it was not started.
bool Starts(std::string command, PROCESS_INFORMATION& process) {
  STARTUPINFOA start = {};
  start.cb = sizeof start;
  DWORD error = kWineFailed;
  for (int attempt = 0; attempt < kAttempts && error == kWineFailed; ++attempt) {
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                       &process) != 0) {
      return true;
    }
    error = GetLastError();
  }
  std::fprintf(stderr, "the process was not started: error %lu\n", error);
  return false;
}

}  // namespace

bool PassesAgain(unsigned seconds) {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  const std::string command = "\"" + ThisProgram() +
                              "\" --gtest_filter=" + test->test_suite_name() + "." + test->name() +
                              " --gtest_output=";
  std::fflush(nullptr);
  PROCESS_INFORMATION process = {};
  return Starts(command, process) && Passes(process, seconds);
}

}  // namespace zqv::interface_test
