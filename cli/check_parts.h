// Checks the library's result for each part: charset, transfer encoding, file name, and lists.
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
  const MessageSource* source;  // null: findings have no line
};

void CheckParts(const PartsToCheck& parts, Findings* findings);

}  // namespace zqv::cli
