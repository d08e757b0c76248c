// The verbs of the program, one function and one file each. A verb returns the exit code: 0, or 1
// when something failed, which it has then reported on standard error.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/filter.h"
#include "cli/output.h"
#include "cli/session.h"
#include "cli/source.h"

namespace zqv::cli {

// A form in which export writes a message.
enum class ExportForm { kJson, kText, kHtml, kFiles };

// The output format of scan.
enum class ScanForm { kTable, kCsv, kJsonLines };

// How JSON contains the bytes of files.
enum class FileForm { kNone, kBase64, kText };

// A part of the messages, chosen by a hash of their relative paths: part `number` of `count`.
struct Shard {
  std::size_t number = 1;
  std::size_t count = 1;
};

// The options of a command line. Each verb uses the ones that apply to it.
struct Request {
  SourceOptions source;                  // the messages; for decode: the texts
  Filter filter;                         // scan, list, extract, export: the messages to work on
  std::size_t message = 0;               // work on this message only, counted from 1; 0: on all
  bool json = false;                     // print JSON documents instead of lines
  std::string field;                     // headers: only fields of this name; empty: all
  std::string part = "0";                // headers: number of the part
  bool classes = false;                  // headers: print the library's fields
  std::optional<std::string> sent_part;  // extract: number of the part to print to standard output
  std::string folder;                    // extract, export: the folder to write to
  std::string page;                      // report: the file to write; "-": standard output
  bool all = false;               // list, extract, export: include structural and empty files
  bool force = false;             // extract, export, report: replace existing files
  bool raw = false;               // print the library's bytes without conversion
  std::optional<FileForm> files;  // json, export; unset: the default of the verb
  bool lines = false;             // json: print each document on one line
  std::vector<ExportForm> forms;  // export; empty: JSON
  bool skip_existing = false;     // export: skip messages that were exported before
  ScanForm scan_form = ScanForm::kTable;
  std::size_t jobs = 1;    // export, scan: number of worker processes
  Shard shard;             // export
  std::size_t rounds = 5;  // bench
};

using Verb = int(const Session& session, const Request& request, Output* output);

// Prints the summary and the plain text of messages.
Verb Show;
// Prints one line for each entity: number, type, size, name.
Verb Tree;
// Prints header fields. Also 1 when a message lacks the part or the field.
Verb Headers;
// Prints one line for each mailbox in the address fields.
Verb Addresses;
// Prints one line for each file in messages.
Verb List;
// Prints one row for each message.
Verb Scan;
// Writes the files of one message to a folder and prints their paths, or prints one part.
Verb Extract;
// Print the plain text or the HTML of messages. Also 1 when there is none.
Verb Text;
Verb Html;
// Converts an HTML file, which is not a message, to plain text.
Verb HtmlToText;
// Decodes encoded words of header texts.
Verb Decode;
// Prints a message without its files.
Verb Strip;
// Prints all members of the classes as JSON.
Verb Json;
// Writes many messages to a folder.
Verb Export;
// Prints findings about messages. Also 1 when there are any.
Verb Check;
// Writes one message as an HTML page.
Verb Report;
// Measures how fast messages are constructed.
Verb Bench;
// Prints what the library registers. Reads no message.
Verb Classes;

}  // namespace zqv::cli
