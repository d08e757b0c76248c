// Progress display for a user who waits at a terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zqv::cli {

// Describes how much of the work is done: "1,204 messages, 310 a second, 38 %, 1:10 left". The rate
// and the time left are omitted in the first second; percentage and time left are omitted when
// `total_bytes` is 0.
std::string ProgressText(std::size_t messages, std::size_t bytes, std::size_t total_bytes,
                         std::chrono::duration<double> passed);

// Formats a duration: "0.3 s", "12 s", "1:10", "3:02:07".
std::string DurationText(std::chrono::duration<double> duration);

class Progress {
 public:
  // `total_bytes` is the size of the whole work; 0: not known.
  explicit Progress(std::size_t total_bytes) : total_bytes_(total_bytes) {}
  // Erases the display.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Whether standard error is a terminal; otherwise nothing must be displayed.
  static bool IsWanted();

  // Counts a finished message of `bytes` bytes and updates the display.
  void Add(std::size_t bytes);

  std::chrono::duration<double> passed() const { return Clock::now() - start_; }

 private:
  using Clock = std::chrono::steady_clock;

  const std::size_t total_bytes_;
  const Clock::time_point start_ = Clock::now();
  const bool is_wanted_ = IsWanted();
  Clock::time_point shown_ = start_;
  std::size_t messages_ = 0;
  std::size_t bytes_ = 0;
};

}  // namespace zqv::cli
