// Counts the instructions of chosen parts of the work only.
//
// Callgrind counts, and must be started with --collect-atstart=no. Without valgrind the functions
// here do nothing. Callgrind switches counting for each thread separately, so a meter serves one
// thread.
#pragma once

#include <string>
#include <string_view>

namespace zqv::growth {

inline constexpr std::string_view kAllPhases = "all";

class Meter {
 public:
  // Counts the phase with this name only, or all phases.
  explicit Meter(std::string_view wanted) : wanted_(wanted) {}

  // Begins a phase.
  void Enter(std::string_view phase);
  // Ends the present phase.
  void Leave();

  // Writes what was counted since the last report, and sets the counts to 0.
  static void Report(const std::string& label);

 private:
  const std::string wanted_;
  bool is_counting_ = false;
};

}  // namespace zqv::growth
