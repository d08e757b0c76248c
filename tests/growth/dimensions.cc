#include "tests/growth/dimensions.h"

namespace zqv::growth {

std::vector<const Dimension*> ListedDimensions() {
  std::vector<const Dimension*> all;
  for (const auto* const table :
       {&kHeaderDimensions, &kAddressDimensions, &kStructureDimensions, &kBodyDimensions,
        &kTextDimensions, &kAttachmentDimensions, &kStripDimensions}) {
    for (const Dimension& dimension : *table) all.push_back(&dimension);
  }
  return all;
}

const Dimension* FindDimension(std::string_view name) {
  for (const Dimension* const dimension : ListedDimensions()) {
    if (dimension->name == name) return dimension;
  }
  for (const Dimension& dimension : kPlantedDimensions) {
    if (dimension.name == name) return &dimension;
  }
  return nullptr;
}

}  // namespace zqv::growth
