#include "cli/output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <system_error>

#include "cli/text.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kStrong = "\x1B[1m";
constexpr std::string_view kPlain = "\x1B[0m";

bool has_passing_line = false;

bool IsSet(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool WantsColour(Colour colour) {
  if (colour != Colour::kAuto) return colour == Colour::kAlways;
  const char* const terminal = std::getenv("TERM");
  return Output::IsTerminal() && !IsSet("NO_COLOR") &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

}  // namespace

void EndOnClosedPipe() { static_cast<void>(std::signal(SIGPIPE, SIG_DFL)); }

Output::Output(Colour colour) : has_colour_(WantsColour(colour)) {}

void Output::Print(std::string_view text) {
  if (!IsGood() || text.empty()) return;
  if (!waiting_.empty()) PrintWaiting();
  has_printed_ = true;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) error_ = errno;
}

void Output::PrintLine(std::string_view text) {
  Print(text);
  Print("\n");
}

bool Output::IsTerminal() { return isatty(STDOUT_FILENO) != 0; }

std::optional<std::size_t> Output::Width() {
  if (!IsTerminal()) return std::nullopt;
  struct winsize size = {};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
  return size.ws_col;
}

std::string Output::Strong(std::string_view text) const {
  if (!has_colour_) return std::string(text);
  return std::string(kStrong).append(text).append(kPlain);
}

bool Output::Finish() {
  if (std::fflush(stdout) != 0 && IsGood()) error_ = errno;
  if (IsGood()) return true;
  Complain("standard output: " + std::generic_category().message(error_));
  return false;
}

void ShowPassingLine(std::string_view line) {
  if (line.empty() && !has_passing_line) return;
  has_passing_line = !line.empty();
  const std::string text = "\r\x1B[K" + std::string(line);
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

std::string ReasonOf(const std::exception& error) {
  return dynamic_cast<const std::bad_alloc*>(&error) != nullptr ? "memory ran out" : error.what();
}

void Complain(std::string_view message) {
  static_cast<void>(std::fflush(stdout));
  ShowPassingLine({});
  const std::string line = "zqv: " + SafeText(message, Lines::kOne) + "\n";
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

}  // namespace zqv::cli
