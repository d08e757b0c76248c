// What a fuzz target is, and how it says that something is wrong.
//
// Each target's file defines `target`. libfuzzer.cc or replay.cc feeds it.
#pragma once

#include <string>
#include <string_view>

namespace zqv::fuzz {

struct Target {
  // Runs once, before the first input.
  void (*start)();
  // Checks one input; ends the process when something does not hold.
  void (*run)(std::string_view input);
  // The same input spelt in the target's own words, so that random bytes reach deep states.
  std::string (*spell)(std::string_view input);
};

extern const Target target;

// Runs the target on the input as it stands, and on what it spells.
void RunBoth(std::string_view input);

// Says what does not hold and ends the process.
[[noreturn]] void Fail(const std::string& what);

// Fails, showing both, when they differ. `what` names the relation.
void ExpectSame(std::string_view what, std::string_view left, std::string_view right);
void Expect(bool holds, std::string_view what);

// ASCII from which every byte can be told.
std::string Escaped(std::string_view bytes);

}  // namespace zqv::fuzz
