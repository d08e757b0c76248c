// What the program can do, one function and one file each. Each gives the program's exit code: 0,
// or 1 when anything could not be done, which has then been said.
#pragma once

#include <string>
#include <vector>

#include "cli/output.h"
#include "cli/session.h"

namespace zqv::cli {

using Files = std::vector<std::string>;  // paths; "-" is standard input

struct HeadersOptions {
  std::string name;        // empty: all fields
  std::string part = "0";  // whose header
};

struct ExtractOptions {
  std::string folder;
  bool force = false;
};

// The labelled lines a reader wants, then the plain text.
int Show(const Session& session, const Files& files, Output* output);
// One line for each entity: number, type, size, name.
int Tree(const Session& session, const Files& files, Output* output);
// Header fields; 1 also when a file lacks the part or the name asked for.
int Headers(const Session& session, const Files& files, const HeadersOptions& options,
            Output* output);
// One line for each attachment and inline part.
int List(const Session& session, const Files& files, Output* output);
// Writes the attachments and inline parts of one message and prints the paths.
int Extract(const Session& session, const std::string& file, const ExtractOptions& options,
            Output* output);
// What the library registered; reads no message.
int Classes(const Session& session, Output* output);

}  // namespace zqv::cli
