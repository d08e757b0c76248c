// Properties that hold for any generated input.
#pragma once

#include <rapidcheck.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace zqv::test {

// Whether `property` holds for a few thousand inputs; prints the smallest for which it does not,
// and the seed. RC_PARAMS in the environment overrides the numbers.
template <class Property>
bool Holds(const std::string& description, Property&& property) {
  setenv("RC_PARAMS", "max_success=3000 max_size=60", 0);
  return rc::check(description, std::forward<Property>(property));
}

}  // namespace zqv::test
