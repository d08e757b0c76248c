// The dimensions in which an input can grow, as tables: one row each, by what it is about.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/growth/work.h"

namespace zqv::growth {

// The smaller one of the two sizes that are compared by default: the most that a dimension can have
// for the whole set to take no longer than it may. What costs thousands of instructions a byte, as
// objects do, gets the smaller ones.
inline constexpr std::size_t kUsual = 65'536;
inline constexpr std::size_t kHalf = 32'768;
inline constexpr std::size_t kDear = 16'384;
inline constexpr std::size_t kDearer = 8'192;
inline constexpr std::size_t kDearest = 2'048;

struct Dimension {
  const char* name;   // "group.name"; what is before the dot is the test it runs in
  const char* grows;  // what there is more of in a bigger input
  Work work;
  // An input of at least so many bytes, and not many more; of 0 bytes one that has nothing of what
  // grows.
  std::string (*make)(std::size_t bytes);
  // The text of the exception by which inputs beyond a documented limit are refused. Any other
  // refusal is a fault of the row.
  const char* limit = nullptr;
  std::size_t bytes = kUsual;
  // The one phase that is counted, where its growth would be lost beside that of the others.
  std::string_view phase = kAllPhases;
};

extern const std::vector<Dimension> kHeaderDimensions;
extern const std::vector<Dimension> kAddressDimensions;
extern const std::vector<Dimension> kStructureDimensions;
extern const std::vector<Dimension> kBodyDimensions;
extern const std::vector<Dimension> kTextDimensions;
extern const std::vector<Dimension> kAttachmentDimensions;
extern const std::vector<Dimension> kStripDimensions;
// Work whose growth is known, for the test of the test. They are not listed.
extern const std::vector<Dimension> kPlantedDimensions;

// All that are listed, in the order of the tables.
std::vector<const Dimension*> ListedDimensions();
// Null when there is none of this name, listed or planted.
const Dimension* FindDimension(std::string_view name);

}  // namespace zqv::growth
