// Scripts by which a shell completes command lines of the program.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace zqv::cli {

// The supported shells: "bash", "zsh", "fish".
std::vector<std::string> CompletionShells();

// Returns a script for one of these shells, which completes the verbs, options and words of `app`.
std::string CompletionScript(const CLI::App& app, const std::string& shell);

}  // namespace zqv::cli
