// Looks for what is odd about a message: in its bytes and in what the library made of them.
//
// Costs no more than its size, whatever a message holds; the library has limited parts and fields.
#pragma once

#include <vector>

#include "cli/findings.h"
#include "cli/message.h"
#include "standin/handles.h"

namespace zqv::cli {

// Where bytes and tree do not fit together, findings lack their part or their line.
std::vector<Finding> FindOddities(const standin::Object& email, const PartTree& tree,
                                  const std::vector<Attached>& attached);

}  // namespace zqv::cli
