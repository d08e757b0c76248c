// Tests of properties that must hold for any generated input.
#pragma once

#include <rapidcheck.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace zqv::test {

// Whether `property` holds for a few thousand generated inputs. Prints the smallest input for which
// it does not hold, and the seed. The environment variable RC_PARAMS overrides numbers and seed.
template <class Property>
bool Holds(const std::string& description, Property&& property) {
  setenv("RC_PARAMS", "max_success=3000 max_size=60", 0);
  return rc::check(description, std::forward<Property>(property));
}

}  // namespace zqv::test
