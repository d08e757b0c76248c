// Reads the program's command line.
#pragma once

#include <variant>

#include "cli/command_line.h"

namespace zqv::cli {

inline constexpr int kUsageError = 2;

// The arguments; or the exit code, after help was printed (0) or a mistake was explained on
// standard error (kUsageError).
std::variant<Arguments, int> ParseArguments(int count, const char* const* values);

}  // namespace zqv::cli
