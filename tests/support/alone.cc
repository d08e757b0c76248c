#include "tests/support/alone.h"

#include <gtest/gtest.h>

#include "tests/support/run_again.h"

namespace zqv::test {

bool IsAlone() {
  if (::testing::UnitTest::GetInstance()->test_to_run_count() == 1) return true;
  EXPECT_TRUE(Succeeds({ThisProgram(), PresentTestAlone(), "--gtest_output="}))
      << "the test failed in a process of its own";
  return false;
}

}  // namespace zqv::test
