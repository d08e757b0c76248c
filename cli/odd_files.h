// What is odd about the files of a message, and about what its header lacks.
#pragma once

#include "cli/attached_files.h"
#include "cli/findings.h"

namespace zqv::cli {

// `source` and `files` are of one message. With `fits` its first parts are those of the library.
void FindInFiles(const MessageSource& source, const FoundFiles& files, bool fits,
                 Findings* findings);

}  // namespace zqv::cli
