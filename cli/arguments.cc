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

// A verb that works on nothing.
CLI::App* AddVerb(CLI::App* app, const char* name, const char* about, Verb* verb,
                  Arguments* arguments) {
  CLI::App* const command = app->add_subcommand(name, about);
  command->fallthrough();
  command->callback([=] { arguments->verb = verb; });
  return command;
}

CLI::App* AddVerbOnFiles(CLI::App* app, const char* name, const char* about, Verb* verb,
                         Arguments* arguments) {
  CLI::App* const command = AddVerb(app, name, about, verb, arguments);
  command->add_option("files", arguments->request.inputs, "Messages; - is standard input")
      ->type_name("FILE...")
      ->required();
  return command;
}

CLI::App* AddVerbOnFile(CLI::App* app, const char* name, const char* about, Verb* verb,
                        Arguments* arguments, const char* what = "Message") {
  CLI::App* const command = AddVerb(app, name, about, verb, arguments);
  command
      ->add_option("file", arguments->request.inputs, what + std::string("; - is standard input"))
      ->type_name("FILE")
      ->expected(1)
      ->required();
  return command;
}

void AddRawFlag(CLI::App* command, const char* about, Arguments* arguments) {
  command->add_flag("--raw", arguments->request.raw, about);
}

void AddVerbsOfParts(CLI::App* app, Arguments* arguments) {
  Request* const request = &arguments->request;
  AddVerbOnFiles(app, "show", "Show messages: who, when, what about, what is in them", Show,
                 arguments);
  AddVerbOnFiles(app, "tree", "Show the parts of messages: number, type, size, name", Tree,
                 arguments);

  CLI::App* const headers =
      AddVerbOnFiles(app, "headers", "Print header fields", Headers, arguments);
  headers->add_option("--name", request->field, "Only the fields of this name")
      ->type_name("NAME")
      ->check(CheckNotEmpty);
  headers->add_option("--part", request->part, "The header of this part, as tree counts")
      ->type_name("NUMBER")
      ->check(CheckPart);

  AddVerbOnFiles(app, "addresses", "List the addresses: field, address, name, group", Addresses,
                 arguments);
  AddVerbOnFiles(app, "list",
                 "List what is attached: part, kind, type, bytes, file name, Content-ID", List,
                 arguments);

  CLI::App* const extract =
      AddVerbOnFile(app, "extract", "Write what is attached into a folder", Extract, arguments);
  extract->add_option("--dir", request->folder, "The folder, made when it is missing")
      ->type_name("FOLDER")
      ->check(CheckNotEmpty)
      ->required();
  extract->add_flag("--force", request->force, "Replace files that are there already");
}

void AddVerbsOfTexts(CLI::App* app, Arguments* arguments) {
  constexpr const char* kRawText = "Print the bytes as they are, in their own encoding";
  AddRawFlag(AddVerbOnFile(app, "text", "Print the plain text of a message", Text, arguments),
             kRawText, arguments);
  AddRawFlag(AddVerbOnFile(app, "html", "Print the HTML of a message", Html, arguments), kRawText,
             arguments);
  AddVerbOnFile(app, "html2text", "Turn HTML into text", HtmlToText, arguments, "HTML");
  AddVerb(app, "decode", "Decode encoded words: =?utf-8?Q?Caf=C3=A9?=", Decode, arguments)
      ->add_option("texts", arguments->request.inputs, "Header texts; - is lines of standard input")
      ->type_name("TEXT...")
      ->required();
  AddRawFlag(AddVerbOnFile(app, "strip", "Print a message without its files", Strip, arguments),
             "Print the line breaks as they are: single CRs", arguments);
  AddRawFlag(
      AddVerbOnFiles(app, "json", "Print all that the classes give, as JSON", Json, arguments),
      "Give each text as its bytes in base64 and the number of its encoding", arguments);
}

void AddVerbs(CLI::App* app, Arguments* arguments) {
  AddVerbsOfParts(app, arguments);
  AddVerbsOfTexts(app, arguments);
  AddVerb(app, "classes", "List the classes that the library registers", Classes, arguments);
}

// Put before words behind "--" that look like options.
constexpr std::string_view kNoOption = "\x01";

// What the user wrote, without the program's name. Behind "--" there are only inputs; the parser
// forgets that once it has met one, so those that look like options are marked.
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

// Of the marked words; files get a path's look, so that "-" and nothing else is standard input.
void RemoveMarks(Arguments* arguments) {
  for (std::string& input : arguments->request.inputs) {
    if (input.compare(0, kNoOption.size(), kNoOption) != 0) continue;
    input.replace(0, kNoOption.size(), arguments->verb == Decode ? "" : "./");
  }
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
    RemoveMarks(&arguments);
  } catch (const CLI::Success& help) {
    return app.exit(help, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    Complain(std::string(error.what()) + " (zqv --help tells more)");
    return kUsageError;
  }
  return arguments;
}

}  // namespace zqv::cli
