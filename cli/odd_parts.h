// What is odd about the parts that the library gives, and about what it read in them.
#pragma once

#include <vector>

#include "cli/findings.h"
#include "cli/message.h"
#include "cli/message_source.h"
#include "standin/handles.h"

namespace zqv::cli {

struct PartsToCheck {
  const standin::Object& email;
  const PartTree& tree;
  const std::vector<Attached>& attached;
  const MessageSource* source;  // null: the parts' lines are not known
};

void FindInParts(const PartsToCheck& parts, Findings* findings);

}  // namespace zqv::cli
