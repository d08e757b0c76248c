// The interface of a fuzz target, and functions to report a failure.
//
// Each target's file defines `target`. libfuzzer.cc or replay.cc runs it.
#pragma once

#include <string>
#include <string_view>

namespace zqv::fuzz {

struct Target {
  // Called once, before the first input.
  void (*start)();
  // Checks one input. Ends the process when a relation does not hold.
  void (*run)(std::string_view input);
  // Converts an input to the target's own words, so that random bytes reach deep states.
  std::string (*spell)(std::string_view input);
};

extern const Target target;

// Runs the target on the input itself and on the converted input.
void RunBoth(std::string_view input);

// Reports what does not hold and ends the process.
[[noreturn]] void Fail(const std::string& what);

// Fails, and shows both texts, when they differ. `what` names the relation.
void ExpectSame(std::string_view what, std::string_view left, std::string_view right);
void Expect(bool holds, std::string_view what);

// The bytes in ASCII, with escapes from which each byte can be recovered.
std::string Escaped(std::string_view bytes);

}  // namespace zqv::fuzz
