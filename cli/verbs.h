// What the program can do, one function and one file each. Each gives the program's exit code: 0,
// or 1 when anything could not be done, which has then been said.
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

enum class ExportForm { kJson, kText, kHtml, kFiles };

// What scan prints.
enum class ScanForm { kTable, kCsv, kJsonLines };

// How JSON gives the bytes of files.
enum class FileForm { kNone, kBase64, kText };

// The share of the messages that is exported: those whose places fall to `number` of `count`.
struct Shard {
  std::size_t number = 1;
  std::size_t count = 1;
};

// What a verb is to work on; each looks at what concerns it.
struct Request {
  SourceOptions source;                  // the messages; for decode the texts
  Filter filter;                         // scan, list, extract, export: which messages
  std::size_t message = 0;               // only this one of all messages, from 1; 0: all
  bool json = false;                     // data as JSON documents instead of lines
  std::string field;                     // headers: only fields of this name; empty: all
  std::string part = "0";                // headers: whose
  bool classes = false;                  // headers: as the library gives them
  std::optional<std::string> sent_part;  // extract: whose bytes go to standard output
  std::string folder;                    // extract, export: where the files go
  std::string page;                      // report: the file to write, "-" for standard output
  bool all = false;                      // list, extract, export: what nobody calls files, too
  bool force = false;                    // extract, export, report: replaces files
  bool raw = false;                      // bytes as the library has them
  std::optional<FileForm> files;         // json, export; nothing: as usual for the verb
  bool lines = false;                    // json: each document on one line
  std::vector<ExportForm> forms;         // export; none: JSON
  bool skip_existing = false;            // export
  ScanForm scan_form = ScanForm::kTable;
  std::size_t jobs = 1;    // export, scan: worker processes
  Shard shard;             // export
  std::size_t rounds = 5;  // bench
};

using Verb = int(const Session& session, const Request& request, Output* output);

// The labelled lines a reader wants, then the plain text.
Verb Show;
// One line for each entity: number, type, size, name.
Verb Tree;
// Header fields; 1 also when a file lacks the part or the name asked for.
Verb Headers;
// One line for each mailbox of the address fields.
Verb Addresses;
// One line for each file that is found in messages.
Verb List;
// One row for each message.
Verb Scan;
// Writes the files of one message and prints the paths; or prints one part.
Verb Extract;
// The plain text of messages, or their HTML; 1 also when there is none.
Verb Text;
Verb Html;
// The text of an HTML file, which is no message.
Verb HtmlToText;
// Encoded words of header text.
Verb Decode;
// One message without its files.
Verb Strip;
// All that the classes give, as JSON.
Verb Json;
// Writes many messages into a folder.
Verb Export;
// What is odd about messages; 1 also when anything is.
Verb Check;
// One message as a page to look at.
Verb Report;
// How fast messages are constructed.
Verb Bench;
// What the library registered; reads no message.
Verb Classes;

}  // namespace zqv::cli
