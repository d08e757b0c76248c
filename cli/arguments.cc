#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/output.h"

namespace zqv::cli {
namespace {

constexpr const char* kAbout =
    "Shows mail messages through the MimeEmailZQV library, as an application would see them.";

// Of host versions and part numbers.
constexpr std::string_view kNumberCharacters = "0123456789.";

std::string CheckVersion(const std::string& text) {
  const bool is_number =
      !text.empty() && text.find_first_not_of(kNumberCharacters) == std::string::npos;
  return is_number ? std::string() : "no version number: " + text;
}

std::string CheckPart(const std::string& text) {
  const bool is_number = !text.empty() && text.front() != '.' && text.back() != '.' &&
                         text.find_first_not_of(kNumberCharacters) == std::string::npos &&
                         text.find("..") == std::string::npos;
  return is_number ? std::string() : "no part number: " + text;
}

std::string CheckEntryPoint(const std::string& name) {
  return IsEntryPoint(name) ? std::string() : "hosts have no entry point " + name;
}

std::string CheckNotEmpty(const std::string& text) {
  return text.empty() ? "is empty" : std::string();
}

void AddCommonOptions(CLI::App* app, SessionOptions* session) {
  app->add_option("--library", session->library,
                  "The library to load instead of MimeEmailZQV.so beside the program")
      ->type_name("FILE")
      ->check(CheckNotEmpty);
  app->add_option("--host-version", session->host_version, "Play a host of this version")
      ->type_name("VERSION")
      ->check(CheckVersion);
  app->add_option("--without", session->without,
                  "Play a host that lacks this entry point; may be repeated")
      ->type_name("NAME")
      ->allow_extra_args(false)
      ->check(CheckEntryPoint);
  app->add_flag("--debug", session->debug, "Write the library's log to standard error");
}

CLI::App* AddVerb(CLI::App* app, const char* name, const char* about, Verb verb,
                  Arguments* arguments) {
  CLI::App* const command = app->add_subcommand(name, about);
  command->fallthrough();
  command->callback([=] { arguments->verb = verb; });
  return command;
}

CLI::App* AddVerbOnFiles(CLI::App* app, const char* name, const char* about, Verb verb,
                         Arguments* arguments) {
  CLI::App* const command = AddVerb(app, name, about, verb, arguments);
  command->add_option("files", arguments->files, "Messages; - is standard input")
      ->type_name("FILE...")
      ->required();
  return command;
}

void AddVerbs(CLI::App* app, Arguments* arguments) {
  AddVerbOnFiles(app, "show", "Show messages: who, when, what about, what is in them", Verb::kShow,
                 arguments);
  AddVerbOnFiles(app, "tree", "Show the parts of messages: number, type, size, name", Verb::kTree,
                 arguments);

  CLI::App* const headers =
      AddVerbOnFiles(app, "headers", "Print header fields", Verb::kHeaders, arguments);
  headers->add_option("--name", arguments->headers.name, "Only the fields of this name")
      ->type_name("NAME")
      ->check(CheckNotEmpty);
  headers->add_option("--part", arguments->headers.part, "The header of this part, as tree counts")
      ->type_name("NUMBER")
      ->check(CheckPart);

  AddVerbOnFiles(app, "list",
                 "List what is attached: part, kind, type, bytes, file name, Content-ID",
                 Verb::kList, arguments);

  CLI::App* const extract =
      AddVerb(app, "extract", "Write what is attached into a folder", Verb::kExtract, arguments);
  extract->add_option("file", arguments->files, "Message; - is standard input")
      ->type_name("FILE")
      ->expected(1)
      ->required();
  extract->add_option("--dir", arguments->extract.folder, "The folder, made when it is missing")
      ->type_name("FOLDER")
      ->check(CheckNotEmpty)
      ->required();
  extract->add_flag("--force", arguments->extract.force, "Replace files that are there already");

  AddVerb(app, "classes", "List the classes that the library registers", Verb::kClasses, arguments);
}

// What the user wrote, without the program's name. Behind "--" there are only files; the parser
// forgets that once it has met one, so those that look like options get a path's look.
std::vector<std::string> Words(int count, const char* const* values) {
  std::vector<std::string> words;
  bool only_files = false;
  for (int i = 1; i < count; ++i) {
    std::string word = values[i];
    if (only_files && word.size() > 1 && word.front() == '-') word.insert(0, "./");
    if (word != "--") words.push_back(std::move(word));
    only_files = only_files || std::string_view(values[i]) == "--";
  }
  return words;
}

}  // namespace

std::variant<Arguments, int> ParseArguments(int count, const char* const* values) {
  Arguments arguments;
  CLI::App app(kAbout, "zqv");
  app.set_version_flag("--version", "zqv " ZQV_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  AddCommonOptions(&app, &arguments.session);
  AddVerbs(&app, &arguments);
  try {
    std::vector<std::string> words = Words(count, values);
    std::reverse(words.begin(), words.end());  // as the parser wants them
    app.parse(std::move(words));
  } catch (const CLI::Success& help) {
    return app.exit(help, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    Complain(std::string(error.what()) + " (zqv --help tells more)");
    return kUsageError;
  }
  return arguments;
}

}  // namespace zqv::cli
