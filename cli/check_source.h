// Checks the bytes of a message: its headers, fields and multiparts.
#pragma once

#include "cli/findings.h"
#include "cli/message_source.h"

namespace zqv::cli {

// `fits` tells that the first parts of `source` are the library's; otherwise findings do not name a
// part.
void CheckSource(const MessageSource& source, bool fits, Findings* findings);

}  // namespace zqv::cli
