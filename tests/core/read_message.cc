// Reads a message with the core only; no code of a host is linked.
//
//   core_reader FILE           prints a description of each part, one line a property:
//
//     part: 1
//     kind: leaf
//     type: image/png
//     destination: attachment
//     place: 0
//     file name: 1536 logo.png
//     decoded: 65535 8 \x89PNG\x0D\x0A\x1A\x0A
//
//   core_reader --strip FILE   writes the message without its files
//
// A text has the number of its encoding before it. Bytes that are not printable ASCII, and
// backslashes, are written as \xHH. Dates are year, month, day, hour, minute, second and zone.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "email/strip.h"
#include "mime/message.h"
#include "tests/core/part_report.h"

namespace {

using zqv::email::DateFields;
using zqv::test::LabelledText;
using zqv::test::PartReport;

std::string Escaped(std::string_view bytes) {
  std::string escaped;
  for (const char c : bytes) {
    if (c >= 0x20 && c < 0x7F && c != '\\') {
      escaped += c;
      continue;
    }
    char code[8];
    std::snprintf(code, sizeof code, "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    escaped += code;
  }
  return escaped;
}

void Print(const char* name, const std::string& value) {
  std::printf("%s: %s\n", name, value.c_str());
}

void Print(const char* name, const std::optional<LabelledText>& text) {
  if (text.has_value()) Print(name, std::to_string(text->encoding) + " " + Escaped(text->bytes));
}

void Print(const char* name, const std::optional<DateFields>& date) {
  if (!date.has_value()) return;
  std::string shown;
  for (const auto field :
       {date->year, date->month, date->day, date->hour, date->minute, date->second}) {
    shown += std::to_string(field) + " ";
  }
  Print(name, shown + std::to_string(date->zone));
}

void Print(const PartReport& part) {
  Print("part", part.number);
  Print("kind", part.kind);
  Print("type", Escaped(part.type));
  Print("destination", part.destination);
  Print("place", std::to_string(part.place));
  Print("file name", part.file_name);
  if (part.decoded.has_value()) {
    Print("decoded", std::to_string(part.decoded->encoding) + " " +
                         std::to_string(part.decoded->bytes.size()) + " " +
                         Escaped(part.decoded->bytes));
  }
  Print("subject", part.subject);
  Print("sent", part.sent);
  Print("received", part.received);
  std::printf("\n");
}

void Run(const char* file, bool strips) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error(std::string("cannot read ") + file);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (strips) {
    const std::string text = zqv::email::WriteWithoutFiles(bytes);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return;
  }
  const zqv::mime::Message message(bytes);
  for (const PartReport& part : zqv::test::ReportParts(message)) Print(part);
}

}  // namespace

int main(int argument_count, char** arguments) {
  const bool strips = argument_count == 3 && std::string_view(arguments[1]) == "--strip";
  if (argument_count != 2 && !strips) {
    std::fprintf(stderr, "core_reader [--strip] FILE\n");
    return 2;
  }
  try {
    Run(arguments[argument_count - 1], strips);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "core_reader: %s\n", error.what());
    return 1;
  }
  return 0;
}
