#include "tests/growth/meter.h"

#include <valgrind/callgrind.h>

namespace zqv::growth {

void Meter::Enter(std::string_view phase) {
  const bool is_wanted = wanted_ == kAllPhases || wanted_ == phase;
  if (is_wanted == is_counting_) return;
  is_counting_ = is_wanted;
  CALLGRIND_TOGGLE_COLLECT;
}

void Meter::Leave() {
  if (!is_counting_) return;
  is_counting_ = false;
  CALLGRIND_TOGGLE_COLLECT;
}

void Meter::Report(const std::string& label) { CALLGRIND_DUMP_STATS_AT(label.c_str()); }

}  // namespace zqv::growth
