// Parses the program's command line.
#pragma once

#include <variant>

#include "cli/command_line.h"

namespace zqv::cli {

inline constexpr int kUsageError = 2;

// Returns the parsed arguments. If there is nothing to do, returns the exit code: 0 after help or
// the version was printed, kUsageError after an error of the command line was printed to standard
// error.
std::variant<Arguments, int> ParseArguments(int count, const char* const* values);

}  // namespace zqv::cli
