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

// Of host versions and part numbers.
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

// Of numbers from 1.
CLI::Validator UpTo(std::size_t most) {
  return CLI::Validator(
      [most](const std::string& text) {
        const std::optional<std::size_t> number = ReadNumber(text);
        return number && *number >= 1 && *number <= most ? std::string()
                                                         : "no number from 1: " + text;
      },
      "");
}

// Of "3/8"; nothing when it is none.
std::optional<Shard> ReadShard(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const std::optional<std::size_t> number = ReadNumber(text.substr(0, slash));
  const std::optional<std::size_t> count = ReadNumber(text.substr(slash + 1));
  if (!number || !count || *number < 1 || *number > *count) return std::nullopt;
  return Shard{*number, *count};
}

std::string CheckShard(const std::string& text) {
  return ReadShard(text) ? std::string() : "no share such as 3/8: " + text;
}

std::string CheckDate(const std::string& text) {
  return ReadPeriod(text) ? std::string() : "no date such as 2024, 2024-01 or 2024-01-20: " + text;
}

// A word that stands for a value. In the order in which help lists them.
template <typename T>
using Choices = std::vector<std::pair<std::string, T>>;

template <typename T>
std::vector<std::string> WordsOf(const Choices<T>& choices) {
  std::vector<std::string> words;
  for (const auto& choice : choices) words.push_back(choice.first);
  return words;
}

// Of a word that is one of the choices.
template <typename T>
T ValueOf(const std::string& word, const Choices<T>& choices) {
  const auto found = std::find_if(choices.begin(), choices.end(),
                                  [&](const auto& choice) { return choice.first == word; });
  return found->second;
}

// What the option `name` gets as its value, one of the words.
template <typename T>
void AddChoice(CLI::App* app, const char* name, T* value, const Choices<T>& choices,
               const char* about) {
  app->add_option_function<std::string>(
         name, [value, choices](const std::string& word) { *value = ValueOf(word, choices); },
         about)
      ->type_name("WORD")
      ->check(CLI::IsMember(WordsOf(choices)));
}

// How a verb takes its messages.
enum class Inputs { kOne, kSeveral };

// Nothing that is handed to the parser refers to it.
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
                     "The library to load instead of MimeEmailZQV.so beside the program")
        ->type_name("FILE")
        ->check(CheckNotEmpty);
    app_->add_option("--host-version", session->host_version, "Play a host of this version")
        ->type_name("VERSION")
        ->check(CheckVersion);
    app_->add_option("--without", session->without,
                     "Play a host that lacks this entry point; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(CheckEntryPoint);
    app_->add_flag("--debug", session->debug, "Write the library's log to standard error");
    AddChoice<Colour>(
        app_, "--color", &arguments_->colour,
        {{"auto", Colour::kAuto}, {"always", Colour::kAlways}, {"never", Colour::kNever}},
        "Colour headings; auto does so on terminals");
  }

  CLI::App* AddVerb(const char* name, const char* about, const char* example, Verb* verb) {
    CLI::App* const command = app_->add_subcommand(name, about);
    command->group(group_);
    command->fallthrough();
    command->footer(std::string("Example: zqv ") + example);
    command->callback([verb, arguments = arguments_] { arguments->verb = verb; });
    return command;
  }

  // A verb that works on messages.
  CLI::App* AddVerbOnMessages(const char* name, const char* about, const char* example, Verb* verb,
                              Inputs inputs = Inputs::kSeveral) {
    CLI::App* const command = AddVerb(name, about, example, verb);
    SourceOptions* const source = &request_->source;
    command
        ->add_option("source", source->inputs,
                     "Messages, mbox files, Maildirs, folders; - is standard input")
        ->type_name("SOURCE")
        ->required();
    command->add_flag("-r,--recursive", source->recursive, "Read what is in folders");
    AddChoice<InputForm>(
        command, "--input", &source->form,
        {{"auto", InputForm::kAuto}, {"message", InputForm::kMessage}, {"mbox", InputForm::kMbox}},
        "What files are; auto: their first lines tell");
    command
        ->add_option("--message", request_->message,
                     inputs == Inputs::kOne ? "Of several messages the one with this number, from 1"
                                            : "Only the message with this number, from 1")
        ->type_name("NUMBER")
        ->check(UpTo(std::numeric_limits<std::size_t>::max()));
    return command;
  }

  // A verb that works on one file that is no message.
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
    command->add_flag("--force", request_->force, "Replace files that are there already");
  }

  void AddFileForm(CLI::App* command, const char* about) {
    AddChoice<std::optional<FileForm>>(
        command, "--attachments", &request_->files,
        {{"none", FileForm::kNone}, {"base64", FileForm::kBase64}, {"text", FileForm::kText}},
        about);
  }

  void AddAll(CLI::App* command) {
    command->add_flag("--all", request_->all,
                      "Also what the library lists and nobody calls a file, such as multiparts");
  }

  void AddFolder(CLI::App* command, const char* name) {
    command->add_option(name, request_->folder, "The folder, made when it is missing")
        ->type_name("FOLDER")
        ->check(CheckNotEmpty);
  }

  // `--to` is a folder for export.
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
                      "Only messages with a file that is not shown within the text");
    command
        ->add_option("--has-finding", filter->finding, "Only messages about which check says this")
        ->type_name("CODE")
        ->check(CLI::IsMember(FindingCodes()));
    command
        ->add_option("--include", request_->source.include,
                     "In folders and archives only files whose names match, such as '*.eml'")
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
    command->add_option("-j,--jobs", request_->jobs, "So many processes side by side")
        ->type_name("NUMBER")
        ->check(UpTo(kMostJobs));
  }

  void AddScan() {
    CLI::App* const scan = AddVerbOnMessages(
        "scan", "Show one line a message: file, date, from, subject, bytes, attachments, findings",
        "scan --recursive Mail", Scan);
    const auto add_form = [&](const char* name, ScanForm form, const char* about) {
      return scan->add_flag_callback(
          name, [request = request_, form] { request->scan_form = form; }, about);
    };
    CLI::Option* const csv = add_form("--csv", ScanForm::kCsv, "Print comma-separated values");
    add_form("--jsonl", ScanForm::kJsonLines,
             "Print a line of JSON for each message, with its files and SHA-256 sums")
        ->excludes(csv);
    AddFilter(scan);
    AddJobs(scan);
  }

  void AddVerbsThatShow() {
    group_ = "Verbs that show";
    AddScan();
    AddJson(AddVerbOnMessages("show", "Show messages: who, when, what about, what is in them",
                              "show letter.eml", Show));

    CLI::App* const headers = AddVerbOnMessages("headers", "Print header fields",
                                                "headers --name Received letter.eml", Headers);
    AddJson(headers);
    headers->add_option("--name", request_->field, "Only the fields of this name")
        ->type_name("NAME")
        ->check(CheckNotEmpty);
    headers->add_option("--part", request_->part, "The header of this part, as tree counts")
        ->type_name("PART")
        ->check(CheckPart);
    AddRaw(headers, "Print the bytes of the fields as they stand in the message");
    headers->add_flag("--classes", request_->classes, "Print the fields as the classes give them")
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
    AddJson(AddVerbOnMessages("check",
                              "Say what is odd about messages; exit code 1 when anything is",
                              "check letter.eml", Check));
  }

  void AddVerbsThatConvert() {
    group_ = "Verbs that convert";
    constexpr const char* kRawText = "Print the bytes as they are, in their own encoding";
    AddRaw(AddVerbOnMessages("text", "Print the plain text of messages", "text letter.eml", Text),
           kRawText);
    AddRaw(AddVerbOnMessages("html", "Print the HTML of messages", "html letter.eml", Html),
           kRawText);
    AddVerbOnFile("html2text", "Turn a file of HTML into text", "html2text page.html", HtmlToText);

    CLI::App* const decode = AddVerb("decode", "Decode encoded words in header texts",
                                     "decode '=?utf-8?Q?Caf=C3=A9?='", Decode);
    AddJson(decode);
    decode
        ->add_option("text", request_->source.inputs, "Header texts; - is lines of standard input")
        ->type_name("TEXT")
        ->required();

    AddRaw(AddVerbOnMessages("strip", "Print a message without its files",
                             "strip letter.eml > small.eml", Strip, Inputs::kOne),
           "Print the line breaks as they are: single CRs");
    CLI::App* const json = AddVerbOnMessages("json", "Print all that the classes give, as JSON",
                                             "json letter.eml", Json);
    AddRaw(json, "Give each text as its bytes in base64 and the number of its encoding");
    AddFileForm(json, "How the bytes of files and of the source are given; at first text");
    json->add_flag("--lines", request_->lines, "Print each document on one line");
    json->callback([arguments = arguments_] {
      arguments->verb = Json;
      arguments->request.json = true;
    });
  }

  void AddVerbsThatWrite() {
    group_ = "Verbs that write files";
    CLI::App* const extract =
        AddVerbOnMessages("extract", "Write what is attached into a folder",
                          "extract letter.eml --dir letter", Extract, Inputs::kOne);
    AddFolder(extract, "--dir");
    AddForce(extract);
    AddAll(extract);
    AddFilter(extract);
    CLI::Option* const part =
        extract
            ->add_option("--stdout", request_->sent_part,
                         "Print the bytes of this part, as tree counts, and write nothing")
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
        AddVerbOnMessages("report", "Write one page that shows a message and all that is in it",
                          "report letter.eml -o letter.html", Report, Inputs::kOne);
    report->add_option("-o,--output", request_->page, "The page; - is standard output")
        ->type_name("FILE")
        ->check(CheckNotEmpty)
        ->required();
    AddForce(report);
  }

  void AddExport() {
    CLI::App* const command =
        AddVerbOnMessages("export", "Write many messages into a folder, each under its own name",
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
            "What to write of each, at first json; several with commas")
        ->type_name("WORD")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(WordsOf(forms)));
    command->add_flag("--skip-existing", request_->skip_existing,
                      "Leave out what is there already");
    AddForce(command);
    AddAll(command);
    command->get_option("--force")->excludes("--skip-existing");
    AddRaw(command, "In JSON give each text as its bytes, as json --raw does");
    AddFileForm(command, "In JSON how the bytes of files and the source are given; at first none");
    AddJobs(command);
    AddFilter(command, "--recipient");
    command
        ->add_option_function<std::string>(
            "--shard",
            [request = request_](const std::string& text) {
              request->shard = ReadShard(text).value_or(Shard());
            },
            "Only this share of the messages: 3/8 is the third of eight")
        ->type_name("I/N")
        ->check(CheckShard);
  }

  void AddVerbsOfTheProgram() {
    group_ = "Verbs about library and program";
    AddJson(AddVerb("classes", "List the classes that the library registers", "classes", Classes));
    CLI::App* const bench = AddVerbOnMessages(
        "bench", "Measure how fast the library constructs messages", "bench letter.eml", Bench);
    AddJson(bench);
    bench->add_option("--rounds", request_->rounds, "Construct everything so many times")
        ->type_name("NUMBER")
        ->check(UpTo(1000000));
    app_->add_subcommand("completion", "Print what makes a shell complete command lines")
        ->group(group_)
        ->footer("Example: zqv completion bash > /etc/bash_completion.d/zqv")
        ->add_option("shell", arguments_->shell, "Which one")
        ->type_name("SHELL")
        ->check(CLI::IsMember(CompletionShells()))
        ->required();
  }

  const char* group_ = "";  // under which help lists the verbs that are added
  CLI::App* const app_;
  Arguments* const arguments_;
  Request* const request_;
};

}  // namespace

void DescribeCommandLine(CLI::App* app, Arguments* arguments) {
  CommandLine(app, arguments).Describe();
}

}  // namespace zqv::cli
