// What is odd about the parts that the library gives, and about what it read in them.
#pragma once

#include <vector>

#include "cli/findings.h"
#include "cli/message.h"
#include "cli/raw_message.h"
#include "standin/handles.h"

namespace zqv::cli {

// `source` tells the lines of the parts that it knows.
void FindInParts(const standin::Object& email, const PartTree& tree,
                 const std::vector<Attached>& attached, const RawMessage& source,
                 Findings* findings);

}  // namespace zqv::cli
