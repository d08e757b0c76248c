#include "cli/output.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "cli/text.h"

namespace zqv::cli {

void EndOnClosedPipe() { static_cast<void>(std::signal(SIGPIPE, SIG_DFL)); }

void Output::Print(std::string_view text) {
  if (!IsGood()) return;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) error_ = errno;
}

void Output::PrintLine(std::string_view text) {
  Print(text);
  Print("\n");
}

bool Output::IsTerminal() { return isatty(STDOUT_FILENO) != 0; }

bool Output::Finish() {
  if (std::fflush(stdout) != 0 && IsGood()) error_ = errno;
  if (IsGood()) return true;
  Complain("standard output: " + std::generic_category().message(error_));
  return false;
}

void Complain(std::string_view message) {
  static_cast<void>(std::fflush(stdout));
  const std::string line = "zqv: " + SafeText(message, Lines::kOne) + "\n";
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

}  // namespace zqv::cli
