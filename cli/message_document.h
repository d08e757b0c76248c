// The document of a message that `json` prints and `export` writes: all that the classes give
// (cli/document.h), and the instant of the Date field as it is written.
#pragma once

#include "cli/print_json.h"
#include "cli/verbs.h"
#include "standin/handles.h"

namespace zqv::cli {

// The value behind the key "message". `files` tells how the bytes of files are written.
JsonValue MessageDocument(const standin::Object& email, const Request& request, FileForm files);

}  // namespace zqv::cli
