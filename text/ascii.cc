#include "text/ascii.h"

#include <algorithm>

namespace zqv::text {

bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

}  // namespace zqv::text
