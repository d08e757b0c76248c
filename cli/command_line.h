// The verbs of the program and their options. This one description serves the parser, the help and
// the shell completion.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "cli/output.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace zqv::cli {

// A parsed command line.
struct Arguments {
  Verb* verb = nullptr;
  Request request;
  SessionOptions session;
  Colour colour = Colour::kAuto;
  std::string shell;  // shell for which a completion script is wanted; empty: a verb is wanted
};

// Adds all verbs and options to an empty `app`. When `app` parses a command line, it stores the
// result in `arguments`, which must outlive it.
void DescribeCommandLine(CLI::App* app, Arguments* arguments);

}  // namespace zqv::cli
