// What the program understands: its verbs and their options. One description serves the parser, the
// help and the completion of shells.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "cli/output.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace zqv::cli {

// What was asked for.
struct Arguments {
  Verb* verb = nullptr;
  Request request;
  SessionOptions session;
  Colour colour = Colour::kAuto;
  std::string shell;  // whose completion is wanted, instead of a verb; empty: none
};

// Describes all verbs to an empty `app`. Parsing fills `arguments`, which must outlive it.
void DescribeCommandLine(CLI::App* app, Arguments* arguments);

}  // namespace zqv::cli
