#include "tests/interface/again.h"

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/run_again.h"

namespace zqv::interface_test {

bool PassesAgain(unsigned) {
  // The words of the emulator, for another processor's program.
  std::istringstream emulator(ZQV_EMULATOR);
  std::vector<std::string> words{std::istream_iterator<std::string>(emulator), {}};
  words.insert(words.end(), {test::ThisProgram(), test::PresentTestAlone(), "--gtest_output="});
  return test::Succeeds(std::move(words));
}

}  // namespace zqv::interface_test
