#include "cli/completion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace zqv::cli {
namespace {

// The kind of word that an option's value or a verb's argument is.
enum class Kind { kNothing, kAnything, kFile, kFolder, kWord };

struct OptionInfo {
  std::string name;    // "--json"
  std::string letter;  // "-j", or empty
  std::string about;
  Kind value = Kind::kNothing;
  std::vector<std::string> words;
};

struct VerbInfo {
  std::string name;
  std::string about;
  std::vector<OptionInfo> options;
  OptionInfo argument;
};

struct Program {
  std::vector<OptionInfo> options;
  std::vector<VerbInfo> verbs;
};

// Returns the words in a type name such as "WORD:{auto,always,never}".
std::vector<std::string> WordsOf(const std::string& type) {
  std::vector<std::string> words;
  const std::size_t open = type.find('{');
  const std::size_t close = type.rfind('}');
  if (open == std::string::npos || close == std::string::npos) return words;
  for (std::size_t at = open + 1; at < close;) {
    const std::size_t end = std::min(type.find(',', at), close);
    words.push_back(type.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

OptionInfo Describe(const CLI::Option& option) {
  OptionInfo info;
  if (!option.get_lnames().empty()) info.name = "--" + option.get_lnames().front();
  if (!option.get_snames().empty()) info.letter = "-" + option.get_snames().front();
  info.about = option.get_description();
  if (option.get_items_expected_max() == 0) return info;
  const std::string type = option.get_type_name();
  info.words = WordsOf(type);
  info.value = Kind::kAnything;
  if (!info.words.empty()) info.value = Kind::kWord;
  if (type == "FILE" || type == "SOURCE") info.value = Kind::kFile;
  if (type == "FOLDER") info.value = Kind::kFolder;
  return info;
}

std::vector<OptionInfo> OptionsOf(const CLI::App& app) {
  std::vector<OptionInfo> options;
  for (const CLI::Option* const option : app.get_options()) {
    if (option->nonpositional()) options.push_back(Describe(*option));
  }
  return options;
}

Program Describe(const CLI::App& app) {
  Program program;
  program.options = OptionsOf(app);
  for (const CLI::App* const command : app.get_subcommands({})) {
    VerbInfo verb = {command->get_name(), command->get_description(), OptionsOf(*command), {}};
    for (const CLI::Option* const option : command->get_options()) {
      if (option->get_positional()) verb.argument = Describe(*option);
    }
    program.verbs.push_back(std::move(verb));
  }
  return program;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// Puts a text in single quotes, which all three shells understand. Characters of `escaped` get a
// backslash.
std::string Quoted(std::string_view text, std::string_view escaped = {}) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
      continue;
    }
    if (escaped.find(c) != std::string_view::npos) quoted += '\\';
    quoted += c;
  }
  return quoted + "'";
}

std::vector<std::string> NamesOf(const std::vector<OptionInfo>& options) {
  std::vector<std::string> names;
  for (const OptionInfo& option : options) {
    if (!option.name.empty()) names.push_back(option.name);
    if (!option.letter.empty()) names.push_back(option.letter);
  }
  return names;
}

// --- bash ---

// Returns code that sets the completions of an option's value or a verb's argument. The word to
// complete is $cur.
std::string BashReply(const OptionInfo& option) {
  switch (option.value) {
    case Kind::kFile:
      return "COMPREPLY=($(compgen -f -- \"$cur\"))";
    case Kind::kFolder:
      return "COMPREPLY=($(compgen -d -- \"$cur\"))";
    case Kind::kWord:
      return "COMPREPLY=($(compgen -W " + Quoted(Joined(option.words)) + " -- \"$cur\"))";
    case Kind::kNothing:
    case Kind::kAnything:
      break;
  }
  return ":";
}

std::string BashValues(const std::string& verb, const std::vector<OptionInfo>& options) {
  std::string rows;
  for (const OptionInfo& option : options) {
    if (option.value == Kind::kNothing) continue;
    std::string pattern;
    for (const std::string& name : NamesOf({option})) {
      if (!pattern.empty()) pattern += " | ";
      pattern.append(verb).append(":").append(name);
    }
    rows += "    " + pattern + ") " + BashReply(option) + "; return ;;\n";
  }
  return rows;
}

std::string BashScript(const Program& program) {
  std::vector<std::string> verbs;
  std::string values;
  std::string rows;
  for (const VerbInfo& verb : program.verbs) {
    verbs.push_back(verb.name);
    values += BashValues(verb.name, verb.options);
    rows += "    " + verb.name + ") options=" + Quoted(Joined(NamesOf(verb.options))) + " ;;\n";
  }
  values += BashValues("*", program.options);
  std::string arguments;
  for (const VerbInfo& verb : program.verbs) {
    arguments += "    " + verb.name + ") " + BashReply(verb.argument) + " ;;\n";
  }
  return "# Completion of zqv's command lines in bash.\n"
         "_zqv() {\n"
         "  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "  local verb='' options='' word verbs=" +
         Quoted(Joined(verbs)) +
         "\n"
         "  COMPREPLY=()\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
         "    case \" $verbs \" in *\" $word \"*) verb=$word; break ;; esac\n"
         "  done\n"
         "  case $verb:$before in\n" +
         values +
         "  esac\n"
         "  case $verb in\n" +
         rows +
         "  esac\n"
         "  if [[ $cur == -* ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$options " +
         Joined(NamesOf(program.options)) +
         "\" -- \"$cur\"))\n"
         "    return\n"
         "  fi\n"
         "  case $verb in\n"
         "    '') COMPREPLY=($(compgen -W \"$verbs\" -- \"$cur\")) ;;\n" +
         arguments +
         "  esac\n"
         "}\n"
         "complete -o filenames -F _zqv zqv\n";
}

// --- zsh ---

std::string ZshAction(const OptionInfo& option) {
  switch (option.value) {
    case Kind::kFile:
      return "_files";
    case Kind::kFolder:
      return "_files -/";
    case Kind::kWord:
      return "(" + Joined(option.words) + ")";
    case Kind::kNothing:
    case Kind::kAnything:
      break;
  }
  return " ";
}

// Returns one argument of the zsh function _arguments for each name of each option.
std::string ZshOptions(const std::vector<OptionInfo>& options, const char* indent) {
  std::string rows;
  for (const OptionInfo& option : options) {
    for (const std::string& name : NamesOf({option})) {
      std::string row = name + "[" + option.about + "]";
      if (option.value != Kind::kNothing) row += ":value:" + ZshAction(option);
      rows +=
          std::string(indent) + Quoted(row, option.value == Kind::kNothing ? ":" : "") + " \\\n";
    }
  }
  return rows;
}

std::string ZshScript(const Program& program) {
  std::string verbs;
  std::string rows;
  for (const VerbInfo& verb : program.verbs) {
    verbs += "    " + Quoted(verb.name + ":" + verb.about) + "\n";
    rows += "        " + verb.name + ")\n          _arguments \\\n" +
            ZshOptions(verb.options, "            ") + ZshOptions(program.options, "            ");
    rows += "            " + Quoted("*:argument:" + ZshAction(verb.argument)) + "\n          ;;\n";
  }
  return "#compdef zqv\n"
         "# Completion of zqv's command lines in zsh.\n"
         "_zqv() {\n"
         "  local state line\n"
         "  local -a verbs\n"
         "  verbs=(\n" +
         verbs +
         "  )\n"
         "  _arguments -C \\\n" +
         ZshOptions(program.options, "    ") +
         "    '1:verb:->verb' '*::argument:->rest'\n"
         "  case $state in\n"
         "    verb) _describe verb verbs ;;\n"
         "    rest)\n"
         "      case $words[1] in\n" +
         rows +
         "      esac\n"
         "      ;;\n"
         "  esac\n"
         "}\n"
         "_zqv \"$@\"\n";
}

// --- fish ---

std::string FishValue(const OptionInfo& option) {
  switch (option.value) {
    case Kind::kFile:
      return " -r -F";
    case Kind::kFolder:
      return " -x -a '(__fish_complete_directories)'";
    case Kind::kWord:
      return " -x -a " + Quoted(Joined(option.words));
    case Kind::kAnything:
      return " -x";
    case Kind::kNothing:
      break;
  }
  return {};
}

std::string FishOptions(const std::vector<OptionInfo>& options, const std::string& start) {
  std::string rows;
  for (const OptionInfo& option : options) {
    rows += start;
    if (!option.letter.empty()) rows += " -s " + option.letter.substr(1);
    if (!option.name.empty()) rows += " -l " + option.name.substr(2);
    rows += FishValue(option) + " -d " + Quoted(option.about, "\\") + "\n";
  }
  return rows;
}

std::string FishScript(const Program& program) {
  std::string rows = "# Completion of zqv's command lines in fish.\ncomplete -c zqv -f\n" +
                     FishOptions(program.options, "complete -c zqv");
  for (const VerbInfo& verb : program.verbs) {
    const std::string seen =
        "complete -c zqv -n " + Quoted("__fish_seen_subcommand_from " + verb.name);
    rows += "complete -c zqv -n __fish_use_subcommand -a " + verb.name + " -d " +
            Quoted(verb.about, "\\") + "\n" + FishOptions(verb.options, seen);
    if (verb.argument.value == Kind::kFile) rows += seen + " -F\n";
    if (verb.argument.value == Kind::kWord) {
      rows += seen + " -a " + Quoted(Joined(verb.argument.words)) + "\n";
    }
  }
  return rows;
}

struct Shell {
  const char* name;
  std::string (*script)(const Program& program);
};
constexpr std::array<Shell, 3> kShells = {
    {{"bash", BashScript}, {"zsh", ZshScript}, {"fish", FishScript}}};

}  // namespace

std::vector<std::string> CompletionShells() {
  std::vector<std::string> names(kShells.size());
  std::transform(kShells.begin(), kShells.end(), names.begin(),
                 [](const Shell& shell) { return shell.name; });
  return names;
}

std::string CompletionScript(const CLI::App& app, const std::string& shell) {
  for (const Shell& known : kShells) {
    if (shell == known.name) return known.script(Describe(app));
  }
  return {};
}

}  // namespace zqv::cli
