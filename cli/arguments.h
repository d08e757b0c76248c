// The program's command line.
#pragma once

#include <string>
#include <variant>

#include "cli/session.h"
#include "cli/verbs.h"

namespace zqv::cli {

enum class Verb { kShow, kTree, kHeaders, kList, kExtract, kClasses };

struct Arguments {
  Verb verb = Verb::kShow;
  Files files;
  HeadersOptions headers;
  ExtractOptions extract;
  SessionOptions session;
};

inline constexpr int kUsageError = 2;

// The arguments; or the exit code, after help was printed (0) or a mistake was explained on
// standard error (kUsageError).
std::variant<Arguments, int> ParseArguments(int count, const char* const* values);

}  // namespace zqv::cli
