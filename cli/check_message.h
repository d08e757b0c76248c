// Checks a message, for the verb `check`: compares its bytes with the library's result and returns
// findings.
//
// Time and memory are linear in the size of the message.
#pragma once

#include <vector>

#include "cli/findings.h"
#include "cli/message.h"
#include "standin/handles.h"

namespace zqv::cli {

// Returns all findings about a message. If the parts in its bytes cannot be matched with the
// library's parts, findings lack their part or their line. If the message exceeds a limit of the
// parser, only the library's objects are checked.
std::vector<Finding> CheckMessage(const standin::Object& email, const PartTree& tree,
                                  const std::vector<Attached>& attached);

}  // namespace zqv::cli
