#include "cli/command_line.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/completion.h"
#include "cli/findings.h"
#include "cli/text.h"
#include "cli/written_date.h"

namespace zqv::cli {
namespace {

// Characters of host versions and part numbers.
constexpr std::string_view kNumberCharacters = "0123456789.";
constexpr std::size_t kMostJobs = 1024;

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

// Accepts numbers from 1 to `most`.
CLI::Validator UpTo(std::size_t most) {
  return CLI::Validator(
      [most](const std::string& text) {
        const std::optional<std::size_t> number = ReadNumber(text);
        return number && *number >= 1 && *number <= most ? std::string()
                                                         : "no number from 1: " + text;
      },
      "");
}

// Parses a shard such as "3/8". Nothing when it is not valid.
std::optional<Shard> ReadShard(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const std::optional<std::size_t> number = ReadNumber(text.substr(0, slash));
  const std::optional<std::size_t> count = ReadNumber(text.substr(slash + 1));
  if (!number || !count || *number < 1 || *number > *count) return std::nullopt;
  return Shard{*number, *count};
}

std::string CheckShard(const std::string& text) {
  return ReadShard(text) ? std::string() : "not a share such as 3/8: " + text;
}

std::string CheckDate(const std::string& text) {
  return ReadPeriod(text) ? std::string()
                          : "not a date such as 2024, 2024-01 or 2024-01-20: " + text;
}

// The words that an option accepts, with their values, in the order in which the help lists them.
template <typename T>
using Choices = std::vector<std::pair<std::string, T>>;

template <typename T>
std::vector<std::string> WordsOf(const Choices<T>& choices) {
  std::vector<std::string> words;
  for (const auto& choice : choices) words.push_back(choice.first);
  return words;
}

// The value of a word, which must be one of the choices.
template <typename T>
T ValueOf(const std::string& word, const Choices<T>& choices) {
  const auto found = std::find_if(choices.begin(), choices.end(),
                                  [&](const auto& choice) { return choice.first == word; });
  return found->second;
}

// Adds an option that accepts one of some words and sets `value` accordingly.
template <typename T>
void AddChoice(CLI::App* app, const char* name, T* value, const Choices<T>& choices,
               const char* about) {
  app->add_option_function<std::string>(
         name, [value, choices](const std::string& word) { *value = ValueOf(word, choices); },
         about)
      ->type_name("WORD")
      ->check(CLI::IsMember(WordsOf(choices)));
}

// The number of messages that a verb takes.
enum class Inputs { kOne, kSeveral };

// Describes the command line to the parser. The parser keeps no reference to this object.
class CommandLine {
 public:
  CommandLine(CLI::App* app, Arguments* arguments)
      : app_(app), arguments_(arguments), request_(&arguments->request) {}

  void Describe() {
    app_->require_subcommand(1);
    app_->get_formatter()->label("SUBCOMMAND", "VERB");
    AddCommonOptions();
    AddVerbsThatShow();
    AddVerbsThatConvert();
    AddVerbsThatWrite();
    AddVerbsOfTheProgram();
  }

 private:
  void AddCommonOptions() {
    SessionOptions* const session = &arguments_->session;
    app_->add_option("--library", session->library,
                     "The library to load; otherwise MimeEmailZQV.so in the folder of the program")
        ->type_name("FILE")
        ->check(CheckNotEmpty);
    app_->add_option("--host-version", session->host_version, "Behave like a host of this version")
        ->type_name("VERSION")
        ->check(CheckVersion);
    app_->add_option("--without", session->without,
                     "Behave like a host without this entry point; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(CheckEntryPoint);
    app_->add_flag("--debug", session->debug, "Write the library's log to standard error");
    AddChoice<Colour>(
        app_, "--color", &arguments_->colour,
        {{"auto", Colour::kAuto}, {"always", Colour::kAlways}, {"never", Colour::kNever}},
        "When to colour headings; auto: on terminals");
  }

  CLI::App* AddVerb(const char* name, const char* about, const char* example, Verb* verb) {
    CLI::App* const command = app_->add_subcommand(name, about);
    command->group(group_);
    command->fallthrough();
    command->footer(std::string("Example: zqv ") + example);
    command->callback([verb, arguments = arguments_] { arguments->verb = verb; });
    return command;
  }

  // Adds a verb that works on messages.
  CLI::App* AddVerbOnMessages(const char* name, const char* about, const char* example, Verb* verb,
                              Inputs inputs = Inputs::kSeveral) {
    CLI::App* const command = AddVerb(name, about, example, verb);
    SourceOptions* const source = &request_->source;
    command
        ->add_option("source", source->inputs,
                     "Messages, mbox files, Maildirs, folders; - is standard input")
        ->type_name("SOURCE")
        ->required();
    command->add_flag("-r,--recursive", source->recursive, "Read the messages in folders");
    AddChoice<InputForm>(
        command, "--input", &source->form,
        {{"auto", InputForm::kAuto}, {"message", InputForm::kMessage}, {"mbox", InputForm::kMbox}},
        "The format of the files; auto: recognised by their first bytes");
    command
        ->add_option("--message", request_->message,
                     inputs == Inputs::kOne
                         ? "The message with this number, counted from 1, if there are several"
                         : "Only the message with this number, counted from 1")
        ->type_name("NUMBER")
        ->check(UpTo(std::numeric_limits<std::size_t>::max()));
    return command;
  }

  // Adds a verb that works on one file, which is not a message.
  CLI::App* AddVerbOnFile(const char* name, const char* about, const char* example, Verb* verb) {
    CLI::App* const command = AddVerb(name, about, example, verb);
    command->add_option("file", request_->source.inputs, "The file; - is standard input")
        ->type_name("FILE")
        ->expected(1)
        ->required();
    return command;
  }

  void AddJson(CLI::App* command) {
    command->add_flag("--json", request_->json, "Print JSON, as docs/schema.json describes it");
  }

  void AddRaw(CLI::App* command, const char* about) {
    command->add_flag("--raw", request_->raw, about);
  }

  void AddForce(CLI::App* command) {
    command->add_flag("--force", request_->force, "Replace existing files");
  }

  void AddFileForm(CLI::App* command, const char* about) {
    AddChoice<std::optional<FileForm>>(
        command, "--attachments", &request_->files,
        {{"none", FileForm::kNone}, {"base64", FileForm::kBase64}, {"text", FileForm::kText}},
        about);
  }

  void AddAll(CLI::App* command) {
    command->add_flag("--all", request_->all,
                      "Include parts that only the library takes for files, such as multiparts");
  }

  void AddFolder(CLI::App* command, const char* name) {
    command
        ->add_option(name, request_->folder,
                     "The folder to write to; it is created if it does not exist")
        ->type_name("FOLDER")
        ->check(CheckNotEmpty);
  }

  // Adds the options that select messages. `to` lists the names of the option for recipients;
  // export uses `--to` for its folder.
  void AddFilter(CLI::App* command, const char* to = "--to,--recipient") {
    Filter* const filter = &request_->filter;
    const auto add_text = [&](const char* names, std::string* text, const char* about) {
      command->add_option(names, *text, about)->type_name("TEXT")->check(CheckNotEmpty);
    };
    add_text("--from", &filter->from, "Only messages with this text in From");
    add_text(to, &filter->to, "Only messages with this text in To, Cc or Bcc");
    add_text("--subject", &filter->subject, "Only messages with this text in the subject");
    AddDay(command, "--since", "Only messages of this day, month or year, or later",
           [filter](Period p) { filter->since = p.first; });
    AddDay(command, "--until", "Only messages of this day, month or year, or earlier",
           [filter](Period p) { filter->until = p.last; });
    command->add_flag("--has-attachment", filter->has_attachment,
                      "Only messages with a file that is not displayed within the text");
    command
        ->add_option("--has-finding", filter->finding,
                     "Only messages for which check reports this finding, such as bad-date")
        ->type_name("CODE")
        ->check(CLI::IsMember(FindingCodes()))
        ->option_text("CODE");  // instead of all codes
    command
        ->add_option("--include", request_->source.include,
                     "In folders and archives, only files whose names match, such as '*.eml'")
        ->type_name("PATTERN")
        ->allow_extra_args(false)
        ->check(CheckNotEmpty);
  }

  template <typename Take>
  void AddDay(CLI::App* command, const char* name, const char* about, Take take) {
    command
        ->add_option_function<std::string>(
            name, [take](const std::string& text) { take(*ReadPeriod(text)); }, about)
        ->type_name("DATE")
        ->check(CheckDate);
  }

  void AddJobs(CLI::App* command) {
    command
        ->add_option("-j,--jobs", request_->jobs,
                     "The number of processes that work at the same time")
        ->type_name("NUMBER")
        ->check(UpTo(kMostJobs));
  }

  void AddScan() {
    CLI::App* const scan = AddVerbOnMessages(
        "scan",
        "Show one line per message: file, date, from, subject, bytes, attachments, findings",
        "scan --recursive Mail", Scan);
    const auto add_form = [&](const char* name, ScanForm form, const char* about) {
      return scan->add_flag_callback(
          name, [request = request_, form] { request->scan_form = form; }, about);
    };
    CLI::Option* const csv = add_form("--csv", ScanForm::kCsv, "Print comma-separated values");
    add_form("--jsonl", ScanForm::kJsonLines,
             "Print a line of JSON for each message, with its files and SHA-256 hashes")
        ->excludes(csv);
    AddFilter(scan);
    AddJobs(scan);
  }

  void AddVerbsThatShow() {
    group_ = "Verbs that show";
    AddScan();
    AddJson(AddVerbOnMessages(
        "show", "Show messages: subject, dates, addresses, attachments and plain text",
        "show letter.eml", Show));

    CLI::App* const headers = AddVerbOnMessages("headers", "Print header fields",
                                                "headers --name Received letter.eml", Headers);
    AddJson(headers);
    headers->add_option("--name", request_->field, "Only the fields with this name")
        ->type_name("NAME")
        ->check(CheckNotEmpty);
    headers
        ->add_option("--part", request_->part,
                     "The header of the part with this number, as shown by tree")
        ->type_name("PART")
        ->check(CheckPart);
    AddRaw(headers, "Print the bytes of the fields as they stand in the message");
    headers->add_flag("--classes", request_->classes, "Print the fields as the classes return them")
        ->excludes("--raw");
    headers->get_option("--json")->excludes("--raw");

    AddJson(AddVerbOnMessages("tree", "Show the parts of messages: number, type, bytes, name",
                              "tree letter.eml", Tree));
    CLI::App* const list = AddVerbOnMessages(
        "list", "List the files in messages: part, kind, type, bytes, file name, Content-ID",
        "list letter.eml", List);
    AddJson(list);
    AddAll(list);
    AddFilter(list);
    AddJson(AddVerbOnMessages("addresses", "List the addresses: field, address, name, group",
                              "addresses --recursive Mail", Addresses));
    AddJson(AddVerbOnMessages(
        "check", "Report faults and unexpected results; exit code 1 when there are any",
        "check letter.eml", Check));
  }

  void AddVerbsThatConvert() {
    group_ = "Verbs that convert";
    constexpr const char* kRawText = "Print the bytes unchanged, in their own encoding";
    AddRaw(AddVerbOnMessages("text", "Print the plain text of messages", "text letter.eml", Text),
           kRawText);
    AddRaw(AddVerbOnMessages("html", "Print the HTML of messages", "html letter.eml", Html),
           kRawText);
    AddVerbOnFile("html2text", "Convert an HTML file to text", "html2text page.html", HtmlToText);

    CLI::App* const decode = AddVerb("decode", "Decode encoded words in header texts",
                                     "decode '=?utf-8?Q?Caf=C3=A9?='", Decode);
    AddJson(decode);
    decode
        ->add_option("text", request_->source.inputs,
                     "Header texts; - stands for the lines of standard input")
        ->type_name("TEXT")
        ->required();

    AddRaw(AddVerbOnMessages("strip", "Print a message without its files",
                             "strip letter.eml > small.eml", Strip, Inputs::kOne),
           "Print the line breaks unchanged: single CRs");
    CLI::App* const json = AddVerbOnMessages(
        "json", "Print everything that the classes return, as JSON", "json letter.eml", Json);
    AddRaw(json, "Print each text as its bytes in base64 and the number of its encoding");
    AddFileForm(json, "How to print the bytes of files and of the source; default: text");
    json->add_flag("--lines", request_->lines, "Print each document on one line");
    json->callback([arguments = arguments_] {
      arguments->verb = Json;
      arguments->request.json = true;
    });
  }

  void AddVerbsThatWrite() {
    group_ = "Verbs that write files";
    CLI::App* const extract =
        AddVerbOnMessages("extract", "Write the files in a message to a folder",
                          "extract letter.eml --dir letter", Extract, Inputs::kOne);
    AddFolder(extract, "--dir");
    AddForce(extract);
    AddAll(extract);
    AddFilter(extract);
    CLI::Option* const part =
        extract
            ->add_option(
                "--stdout", request_->sent_part,
                "Print the bytes of the part with this number, as shown by tree, and write nothing")
            ->type_name("PART")
            ->check(CheckPart);
    extract->get_option("--dir")->excludes(part);
    extract->callback([arguments = arguments_] {
      if (arguments->request.folder.empty() && !arguments->request.sent_part) {
        throw CLI::RequiredError("--dir or --stdout");
      }
      arguments->verb = Extract;
    });

    AddExport();

    CLI::App* const report =
        AddVerbOnMessages("report", "Write an HTML page with a message and everything in it",
                          "report letter.eml -o letter.html", Report, Inputs::kOne);
    report->add_option("-o,--output", request_->page, "The file to write; - is standard output")
        ->type_name("FILE")
        ->check(CheckNotEmpty)
        ->required();
    AddForce(report);
  }

  void AddExport() {
    CLI::App* const command =
        AddVerbOnMessages("export", "Write many messages to a folder, each under its own name",
                          "export Mail --recursive --to out --jobs 4", Export);
    AddFolder(command, "--to");
    command->get_option("--to")->required();
    const Choices<ExportForm> forms = {{"json", ExportForm::kJson},
                                       {"text", ExportForm::kText},
                                       {"html", ExportForm::kHtml},
                                       {"attachments", ExportForm::kFiles}};
    command
        ->add_option_function<std::vector<std::string>>(
            "--form",
            [request = request_, forms](const std::vector<std::string>& words) {
              for (const std::string& word : words) {
                request->forms.push_back(ValueOf(word, forms));
              }
            },
            "What to write of each message, separated by commas; default: json")
        ->type_name("WORD")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(WordsOf(forms)));
    command->add_flag("--skip-existing", request_->skip_existing, "Skip files that exist already");
    AddForce(command);
    AddAll(command);
    command->get_option("--force")->excludes("--skip-existing");
    AddRaw(command, "In JSON, write each text as its bytes, like json --raw");
    AddFileForm(command, "How JSON contains the bytes of files and of the source; default: none");
    AddJobs(command);
    AddFilter(command, "--recipient");
    command
        ->add_option_function<std::string>(
            "--shard",
            [request = request_](const std::string& text) {
              request->shard = ReadShard(text).value_or(Shard());
            },
            "Only one part of the messages: 3/8 is the third of eight parts")
        ->type_name("I/N")
        ->check(CheckShard);
  }

  void AddVerbsOfTheProgram() {
    group_ = "Verbs about library and program";
    AddJson(AddVerb("classes", "List the classes that the library registers", "classes", Classes));
    CLI::App* const bench = AddVerbOnMessages(
        "bench", "Measure how fast the library constructs messages", "bench letter.eml", Bench);
    AddJson(bench);
    bench->add_option("--rounds", request_->rounds, "How often to construct each message")
        ->type_name("NUMBER")
        ->check(UpTo(1000000));
    app_->add_subcommand("completion", "Print a script by which a shell completes command lines")
        ->group(group_)
        ->footer("Example: zqv completion bash > /etc/bash_completion.d/zqv")
        ->add_option("shell", arguments_->shell, "The shell")
        ->type_name("SHELL")
        ->check(CLI::IsMember(CompletionShells()))
        ->required();
  }

  const char* group_ = "";  // the heading of the verbs that are being added, in the help
  CLI::App* const app_;
  Arguments* const arguments_;
  Request* const request_;
};

}  // namespace

void DescribeCommandLine(CLI::App* app, Arguments* arguments) {
  CommandLine(app, arguments).Describe();
}

}  // namespace zqv::cli
