// What makes shells complete the program's command lines.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace zqv::cli {

// "bash", "zsh", "fish".
std::vector<std::string> CompletionShells();

// A script for one of these shells that offers the verbs, options and words of `app`.
std::string CompletionScript(const CLI::App& app, const std::string& shell);

}  // namespace zqv::cli
