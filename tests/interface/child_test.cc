// Checks InChild itself: a failure in the child fails the test that started it.
#include "tests/interface/child.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace zqv::interface_test {
namespace {

TEST(InChild, IsQuietWhenAllIsWell) {
  InChild("good", [] {});
}

TEST(InChild, ReportsACrash) {
  EXPECT_NONFATAL_FAILURE(InChild("crash", [] { std::abort(); }), "crash: the child ");
}

TEST(InChild, ReportsAnException) {
  EXPECT_NONFATAL_FAILURE(InChild("thrower", [] { throw std::runtime_error("why"); }),
                          "thrower: the child let an exception out\nuncaught: why");
}

TEST(InChild, ReportsAHang) {
  EXPECT_NONFATAL_FAILURE(InChild(
                              "sleeper", [] { sleep(60); }, 1),
                          "sleeper: the child hung");
}

TEST(InChild, ReportsALeak) {
  if (!kAddressSanitized) GTEST_SKIP() << "no leak checker in this build";
  const auto leak = [] {
    void* volatile memory = std::malloc(1000);
    static_cast<void>(memory);
    memory = nullptr;
  };
  EXPECT_NONFATAL_FAILURE(InChild("leaker", leak), "leaker: the child leaked");
}

}  // namespace
}  // namespace zqv::interface_test
