// Checks the files of a message, and its From and Content-Type fields.
#pragma once

#include "cli/attached_files.h"
#include "cli/findings.h"

namespace zqv::cli {

// `files` must be made of `source`. `fits` tells that the first parts of `source` are the
// library's; otherwise findings do not name a part.
void CheckFiles(const MessageSource& source, const FoundFiles& files, bool fits,
                Findings* findings);

}  // namespace zqv::cli
