// How far a long work is, for whoever waits at a terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zqv::cli {

// How a part of the work is done in a time: "1,204 messages, 310 a second, 38 %, 1:10 left". Rate
// and time left are there once they can be told: not in the first second, not without a total.
std::string ProgressText(std::size_t messages, std::size_t bytes, std::size_t total_bytes,
                         std::chrono::duration<double> passed);

// "0.3 s", "12 s", "1:10", "3:02:07".
std::string DurationText(std::chrono::duration<double> duration);

class Progress {
 public:
  // `total_bytes` 0: not known.
  explicit Progress(std::size_t total_bytes) : total_bytes_(total_bytes) {}
  // Wipes the line away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Whether standard error is a terminal; where not, nothing is shown.
  static bool IsWanted();

  // A message of so many bytes is done.
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
