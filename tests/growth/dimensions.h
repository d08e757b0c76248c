// Tables of the dimensions in which an input can grow, one row a dimension.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/growth/work.h"

namespace zqv::growth {

// The default size of the smaller input. Dimensions for which a byte costs thousands of
// instructions, because objects are made, have smaller sizes, so that all tests together do not
// take too long.
inline constexpr std::size_t kUsual = 65'536;
inline constexpr std::size_t kHalf = 32'768;
inline constexpr std::size_t kDear = 16'384;
inline constexpr std::size_t kDearer = 8'192;
inline constexpr std::size_t kDearest = 2'048;

struct Dimension {
  const char* name;   // "group.name"; the group selects the test of ctest
  const char* grows;  // what a larger input has more of
  Work work;
  // Makes an input of at least `bytes` bytes, and not many more. With 0 it makes an input that has
  // nothing of what grows.
  std::string (*make)(std::size_t bytes);
  // The text of the exception for inputs beyond a documented limit. Any other exception is a fault
  // of the row.
  const char* limit = nullptr;
  std::size_t bytes = kUsual;
  // The only phase that is counted, for growth that would be small compared with the other phases.
  std::string_view phase = kAllPhases;
};

extern const std::vector<Dimension> kHeaderDimensions;
extern const std::vector<Dimension> kAddressDimensions;
extern const std::vector<Dimension> kStructureDimensions;
extern const std::vector<Dimension> kBodyDimensions;
extern const std::vector<Dimension> kTextDimensions;
extern const std::vector<Dimension> kAttachmentDimensions;
extern const std::vector<Dimension> kStripDimensions;
// Work with known growth, for the self-test. These dimensions are not listed.
extern const std::vector<Dimension> kPlantedDimensions;

// All listed dimensions, in the order of the tables.
std::vector<const Dimension*> ListedDimensions();
// The listed or planted dimension of this name; null when there is none.
const Dimension* FindDimension(std::string_view name);

}  // namespace zqv::growth
