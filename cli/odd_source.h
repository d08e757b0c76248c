// What is odd about the bytes of a message: its multiparts, headers and fields.
#pragma once

#include "cli/findings.h"
#include "cli/raw_message.h"

namespace zqv::cli {

void FindInSource(const RawMessage& message, Findings* findings);

}  // namespace zqv::cli
