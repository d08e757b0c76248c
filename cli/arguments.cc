#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/completion.h"
#include "cli/output.h"

namespace zqv::cli {
namespace {

constexpr const char* kAbout =
    "Shows mail messages through the MimeEmailZQV library, as an application would see them.";

// Marks a word after "--" that looks like an option. No command line contains this character.
constexpr std::string_view kNoOption = "\x01";

// The words of the command line without the program's name. All words after "--" are inputs, but
// the parser applies "--" to the next word only. So words after it that look like options are
// marked.
std::vector<std::string> Words(int count, const char* const* values) {
  std::vector<std::string> words;
  bool only_inputs = false;
  for (int i = 1; i < count; ++i) {
    std::string word = values[i];
    if (only_inputs && word.size() > 1 && word.front() == '-') word.insert(0, kNoOption);
    if (word != "--") words.push_back(std::move(word));
    only_inputs = only_inputs || std::string_view(values[i]) == "--";
  }
  return words;
}

// Removes the marks. A marked file name becomes a path, so that the name "-" after "--" does not
// mean standard input.
void RemoveMarks(Arguments* arguments) {
  for (std::string& input : arguments->request.source.inputs) {
    if (input.compare(0, kNoOption.size(), kNoOption) != 0) continue;
    input.replace(0, kNoOption.size(), arguments->verb == Decode ? "" : "./");
  }
}

// Describes an error of the command line in a few words.
std::string Explain(const CLI::App& app, const CLI::ParseError& error) {
  const bool lacks_something =
      error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
  if (lacks_something && !app.get_subcommands().empty()) {
    for (const std::string& word : app.remaining(true)) {
      if (word.size() > 1 && word.front() == '-') {
        return "there is no option " + word + "; after -- it is a file";
      }
    }
  }
  if (!lacks_something || !app.get_subcommands().empty()) return error.what();
  const std::vector<std::string> words = app.remaining();
  if (words.empty()) return "a verb is missing";
  const bool is_option = words.front().compare(0, 1, "-") == 0;
  return (is_option ? "there is no option " : "there is no verb ") + words.front();
}

// Flushes the output of the parser. Returns `code`, or 1 if that fails, which it then reports.
int Flushed(int code) {
  std::cout.flush();
  if (std::cout) return code;
  Complain("standard output: " + std::generic_category().message(errno));
  return 1;
}

}  // namespace

std::variant<Arguments, int> ParseArguments(int count, const char* const* values) {
  const auto holder = std::make_unique<Arguments>();
  CLI::App app(kAbout, "zqv");
  app.set_version_flag("--version", "zqv " ZQV_VERSION, "Print the version and exit");
  app.footer(
      "zqv VERB --help shows the options of a verb. Exit codes: 0 success; 1 something could\n"
      "not be read or written, or check has findings; 2 the command line is wrong.");
  DescribeCommandLine(&app, holder.get());
  try {
    std::vector<std::string> words = Words(count, values);
    std::reverse(words.begin(), words.end());  // the parser expects them in reverse order
    app.parse(std::move(words));
    RemoveMarks(holder.get());
  } catch (const CLI::Success& help) {
    return Flushed(app.exit(help, std::cout, std::cerr));
  } catch (const CLI::ParseError& error) {
    Complain(Explain(app, error) + " (see zqv --help)");
    return kUsageError;
  }
  if (holder->shell.empty()) return std::move(*holder);
  std::cout << CompletionScript(app, holder->shell);
  return Flushed(0);
}

}  // namespace zqv::cli
