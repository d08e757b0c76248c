// What the program can do, one function and one file each. Each gives the program's exit code: 0,
// or 1 when anything could not be done, which has then been said.
#pragma once

#include <string>
#include <vector>

#include "cli/output.h"
#include "cli/session.h"

namespace zqv::cli {

// What a verb is to work on; each looks at what concerns it.
struct Request {
  std::vector<std::string> inputs;  // paths of files, "-" being standard input; texts for decode
  std::string field;                // headers: only fields of this name; empty: all
  std::string part = "0";           // headers: whose
  std::string folder;               // extract: where the files go
  bool force = false;               // extract: replaces files
  bool raw = false;                 // bytes as the library has them
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
// One line for each attachment and inline part.
Verb List;
// Writes the attachments and inline parts of one message and prints the paths.
Verb Extract;
// The plain text of one message, or its HTML; 1 also when there is none.
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
// What the library registered; reads no message.
Verb Classes;

}  // namespace zqv::cli
