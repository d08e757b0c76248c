// Counting the instructions of some of the work and of nothing else.
//
// Counting is callgrind's, started with --collect-atstart=no; without valgrind around the program
// every call here does nothing. Callgrind keeps for each thread whether it counts: a meter serves
// one thread.
#pragma once

#include <string>
#include <string_view>

namespace zqv::growth {

inline constexpr std::string_view kAllPhases = "all";

class Meter {
 public:
  // Counts the phase of the given name, or all of them.
  explicit Meter(std::string_view wanted) : wanted_(wanted) {}

  // What follows belongs to this phase.
  void Enter(std::string_view phase);
  // What follows belongs to none.
  void Leave();

  // Has all that was counted since the last time written out and starts from 0.
  static void Report(const std::string& label);

 private:
  const std::string wanted_;
  bool is_counting_ = false;
};

}  // namespace zqv::growth
