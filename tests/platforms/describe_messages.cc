// Describes what the library makes of messages, so that files for different systems can be
// compared:
//   describe_messages LIBRARY HOST-VERSION FOLDER LIST OUTPUT [NAME]
// LIST has one message a line, named without the path FOLDER. OUTPUT gets three lines for each
// message, one for each constructor: name, constructor, exception, and hashes of the JSON in UTF-8,
// of the JSON with the strings' own bytes, and of the log. For the message NAME, OUTPUT gets the
// hashed texts themselves.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/fnv.h"
#include "cli/document.h"
#include "standin/application.h"
#include "standin/host.h"
#include "standin/library.h"
#include "tests/support/error_capture.h"

namespace zqv {
namespace {

struct Way {
  const char* name;
  const char* constructor;
};
constexpr Way kWays[] = {{"string", "Constructor(Content as string)"},
                         {"block", "Constructor(Content as MemoryBlock)"},
                         {"file", "Constructor(File as FolderItem)"}};

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file.good()) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

standin::Value InputFor(const Way& way, const std::string& path, const std::string& bytes) {
  if (way.name == std::string_view("string")) {
    return standin::MakeString(bytes, abi::kUnknownEncoding);
  }
  if (way.name == std::string_view("block")) return standin::MakeMemoryBlock(bytes);
  return standin::MakeFolderItem(path);
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Replaces the end of a log line, which differs between systems and between runs. An address
// becomes "somewhere", a null pointer "nowhere".
const char* StandsFor(std::string_view end) {
  if (StartsWith(end, "file:") || end.find('/') != std::string_view::npos) return "PATH";
  const bool is_null = end == "(nil)" || end.find_first_not_of("0x") == std::string_view::npos;
  return is_null ? "nowhere" : "somewhere";
}

std::string WithoutPlaces(std::string_view log) {
  std::string result;
  while (!log.empty()) {
    const std::string_view line = log.substr(0, log.find('\n'));
    log.remove_prefix(std::min(line.size() + 1, log.size()));
    std::string settled(line);
    for (const std::string_view start : {"ZQV Debug: result ", "ZQV Debug: f ", "ZQV Debug: f1 ",
                                         "ZQV Debug: f2 ", "native path: ", "url path: "}) {
      if (!StartsWith(line, start)) continue;
      settled = std::string(start) + StandsFor(line.substr(start.size()));
    }
    result += settled + "\n";
  }
  return result;
}

struct Description {
  std::string raised;
  std::string readable;
  std::string raw;
  std::string log;
};

Description Describe(const Way& way, const std::string& path, const std::string& bytes) {
  const test::ErrorCapture log;
  Description description;
  const standin::Object message = standin::NewInstance("MimeEmailZQV");
  try {
    standin::CallWith(message, way.constructor, {InputFor(way, path, bytes)});
  } catch (const standin::HostException& exception) {
    description.raised = exception.class_name + ": " + exception.message;
  }
  constexpr int kIndent = 1;
  constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
  description.readable =
      cli::DescribeMessage(message, cli::ReadableText).dump(kIndent, ' ', true, kReplace);
  description.raw = cli::DescribeMessage(message, cli::RawText).dump(kIndent, ' ', true, kReplace);
  description.log = WithoutPlaces(log.Text());
  return description;
}

std::string Hash(const std::string& text) {
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(base::Fnv(text)));
  return digits;
}

void Write(const Description& is, const std::string& name, const Way& way, bool whole,
           std::ostream* output) {
  *output << name << '\t' << way.name << '\t' << is.raised << '\t' << Hash(is.readable) << '\t'
          << Hash(is.raw) << '\t' << Hash(is.log) << '\n';
  if (whole) *output << is.readable << '\n' << is.raw << '\n' << is.log;
}

int Run(const std::vector<std::string>& arguments) {
  standin::Capabilities capabilities;
  capabilities.version = std::stod(arguments[1]);
  const auto host = standin::Host::Start(capabilities);
  standin::Library(arguments[0]).Enter(*host);
  standin::SetShared("MimeEmailZQV", "Debugging", true);
  std::ifstream list(arguments[3]);
  std::ofstream output(arguments[4], std::ios::binary);
  const std::string whole = arguments.size() > 5 ? arguments[5] : "";
  std::size_t count = 0;
  for (std::string name; std::getline(list, name); ++count) {
    const std::string path = arguments[2] + "/" + name;
    const std::string bytes = ReadWholeFile(path);
    for (const Way& way : kWays) {
      Write(Describe(way, path, bytes), name, way, name == whole, &output);
    }
  }
  host->DropAllStrays();
  const std::string left = host->ledger().Report();
  if (!left.empty()) std::fprintf(stderr, "left behind: %s\n", left.c_str());
  return count > 0 && left.empty() && output.good() ? 0 : 1;
}

}  // namespace
}  // namespace zqv

int main(int count, char** arguments) {
  if (count != 6 && count != 7) {
    std::fprintf(stderr,
                 "usage: describe_messages LIBRARY HOST-VERSION FOLDER LIST OUTPUT [NAME]\n");
    return 2;
  }
  try {
    return zqv::Run({arguments + 1, arguments + count});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "describe_messages: %s\n", error.what());
    return 1;
  }
}
