#include "cli/oddities.h"

#include <string_view>

#include "cli/odd_parts.h"
#include "cli/odd_source.h"
#include "cli/raw_message.h"

namespace zqv::cli {
namespace {

// Whether the library can have read these parts, and no others.
bool Fits(const RawMessage& source, std::size_t count) {
  if (source.rest == RestOfParts::kUnknown) return source.known <= count;
  return source.known == count;
}

}  // namespace

std::vector<Finding> FindOddities(const standin::Object& email, const PartTree& tree,
                                  const std::vector<Attached>& attached) {
  const standin::String bytes = TextMember(email, "Source");
  RawMessage source = ReadRawMessage(bytes.bytes());
  if (!Fits(source, tree.parts().size())) {
    source.known = 0;
    source.rest = RestOfParts::kUnknown;
  }
  Findings findings;
  FindInSource(source, &findings);
  FindInParts(email, tree, attached, source, &findings);
  return findings.Take();
}

}  // namespace zqv::cli
