// The JSON document of a message, which `json` prints and `export` writes: all members of its
// classes (cli/document.h), and the instant of its Date field.
#pragma once

#include "cli/print_json.h"
#include "cli/verbs.h"
#include "standin/handles.h"

namespace zqv::cli {

// Returns the value of the document's key "message". `files` tells how the bytes of files are
// written.
JsonValue MessageDocument(const standin::Object& email, const Request& request, FileForm files);

}  // namespace zqv::cli
