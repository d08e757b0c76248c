#include "tests/interface/child.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tests/interface/files.h"
#include "tests/support/unnamed_file.h"

#if defined(__linux__)
// Only there when the leak checker is linked in.
extern "C" __attribute__((weak)) int __lsan_do_recoverable_leak_check();
#endif

namespace zqv::interface_test {
namespace {

enum ExitCode { kGood = 0, kFailed = 91, kThrew = 92, kLeaked = 93 };

int FailedParts() {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  int failed = 0;
  for (int i = 0; i < test->result()->total_part_count(); ++i) {
    if (test->result()->GetTestPartResult(i).failed()) ++failed;
  }
  return failed;
}

bool HasLeaked() {
#if defined(__linux__)
  return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

int Run(const std::function<void()>& body) {
  const int failed_before = FailedParts();
  try {
    body();
  } catch (const std::exception& error) {
    std::printf("uncaught: %s\n", error.what());
    return kThrew;
  } catch (...) {
    std::printf("uncaught: a value that is no std::exception\n");
    return kThrew;
  }
  if (FailedParts() != failed_before) return kFailed;
  return HasLeaked() ? kLeaked : kGood;
}

std::string HowItEnded(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return signal == SIGALRM ? "hung" : "was ended by signal " + std::to_string(signal);
  }
  switch (WEXITSTATUS(status)) {
    case kFailed:
      return "had a failed expectation";
    case kThrew:
      return "let an exception out";
    case kLeaked:
      return "leaked";
    default:
      return "ended with " + std::to_string(WEXITSTATUS(status));
  }
}

}  // namespace

void InChild(const std::string& configuration, const std::function<void()>& body,
             unsigned seconds) {
  const int output = test::OpenUnnamedFile();
  ASSERT_GE(output, 0);
  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    alarm(seconds);
    const int code = Run(body);
    std::fflush(nullptr);
    _exit(code);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  if (status != 0) {
    ADD_FAILURE() << configuration << ": the child " << HowItEnded(status) << "\n"
                  << test::TextOfFile(output);
  }
  close(output);
}

std::string TextFromChild(const std::string& configuration,
                          const std::function<std::string()>& body, unsigned seconds) {
  const TemporaryFolder folder;
  InChild(
      configuration, [&] { folder.Write("text", body()); }, seconds);
  return ReadWholeFile(folder.Path("text"));
}

}  // namespace zqv::interface_test
