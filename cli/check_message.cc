#include "cli/check_message.h"

#include <optional>
#include <stdexcept>

#include "cli/check_files.h"
#include "cli/check_parts.h"
#include "cli/check_source.h"
#include "cli/message_source.h"

namespace zqv::cli {

std::vector<Finding> CheckMessage(const standin::Object& email, const PartTree& tree,
                                  const std::vector<Attached>& attached) {
  const standin::String bytes = TextMember(email, "Source");
  std::optional<MessageSource> source;
  try {
    source.emplace(bytes.bytes());
  } catch (const std::runtime_error&) {
    // The message exceeds a limit of the parser, so the checks of its bytes are skipped.
  }
  const bool fits = source && source->known() == tree.parts().size();
  Findings findings;
  if (source) {
    CheckSource(*source, fits, &findings);
    CheckFiles(*source, FoundFiles(*source), fits, &findings);
  }
  CheckParts({email, tree, attached, fits ? &*source : nullptr}, &findings);
  return findings.Take();
}

}  // namespace zqv::cli
