// What is odd about the bytes of a message: its multiparts, headers and fields.
#pragma once

#include "cli/findings.h"
#include "cli/message_source.h"

namespace zqv::cli {

// Unless `fits`, the library's parts are not those of `source`: findings then lack their part.
void FindInSource(const MessageSource& source, bool fits, Findings* findings);

}  // namespace zqv::cli
