#include "cli/progress.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "cli/output.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds kPause(200);
constexpr Seconds kFirstEstimate(1);

std::string TwoDigits(std::size_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string DurationText(Seconds duration) {
  constexpr double kTenSeconds = 10;
  constexpr std::size_t kSixty = 60;
  if (duration.count() < kTenSeconds) {
    std::array<char, 16> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f s", duration.count()));
    return text.data();
  }
  const auto seconds = static_cast<std::size_t>(std::llround(duration.count()));
  if (seconds < kSixty) return std::to_string(seconds) + " s";
  const std::size_t minutes = seconds / kSixty;
  const std::string end = ":" + TwoDigits(seconds % kSixty);
  if (minutes < kSixty) return std::to_string(minutes) + end;
  return std::to_string(minutes / kSixty) + ":" + TwoDigits(minutes % kSixty) + end;
}

std::string ProgressText(std::size_t messages, std::size_t bytes, std::size_t total_bytes,
                         Seconds passed) {
  std::string text = Counted(messages, "message");
  if (passed >= kFirstEstimate) {
    const double rate = static_cast<double>(messages) / passed.count();
    text += ", " + Grouped(static_cast<std::size_t>(rate)) + " a second";
  }
  if (total_bytes == 0 || bytes == 0) return text;
  constexpr double kHundred = 100;
  const double share = std::min(1.0, static_cast<double>(bytes) / static_cast<double>(total_bytes));
  text += ", " + std::to_string(static_cast<std::size_t>(share * kHundred)) + " %";
  if (passed >= kFirstEstimate) text += ", " + DurationText(passed * (1 / share - 1)) + " left";
  return text;
}

bool Progress::IsWanted() { return isatty(STDERR_FILENO) != 0; }

void Progress::Add(std::size_t bytes) {
  ++messages_;
  bytes_ += bytes;
  const Clock::time_point now = Clock::now();
  if (!is_wanted_ || now - shown_ < kPause) return;
  shown_ = now;
  ShowPassingLine(ProgressText(messages_, bytes_, total_bytes_, now - start_));
}

Progress::~Progress() { ShowPassingLine({}); }

}  // namespace zqv::cli
