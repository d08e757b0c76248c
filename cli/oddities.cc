#include "cli/oddities.h"

#include <optional>
#include <stdexcept>

#include "cli/message_source.h"
#include "cli/odd_files.h"
#include "cli/odd_parts.h"
#include "cli/odd_source.h"

namespace zqv::cli {

std::vector<Finding> FindOddities(const standin::Object& email, const PartTree& tree,
                                  const std::vector<Attached>& attached) {
  const standin::String bytes = TextMember(email, "Source");
  std::optional<MessageSource> source;
  try {
    source.emplace(bytes.bytes());
  } catch (const std::runtime_error&) {
    // Beyond the limits of the core: all that needs its tree is left out.
  }
  const bool fits = source && source->known() == tree.parts().size();
  Findings findings;
  if (source) {
    FindInSource(*source, fits, &findings);
    FindInFiles(*source, FoundFiles(*source), fits, &findings);
  }
  FindInParts({email, tree, attached, fits ? &*source : nullptr}, &findings);
  return findings.Take();
}

}  // namespace zqv::cli
