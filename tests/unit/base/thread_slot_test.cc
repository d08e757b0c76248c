#include "base/thread_slot.h"

#include <gtest/gtest.h>

#include "tests/support/thread_stack.h"

namespace zqv::test {
namespace {

TEST(ThreadSlot, IsNullAtFirst) { EXPECT_EQ(base::GetThreadSlot(), nullptr); }

TEST(ThreadSlot, ReturnsTheStoredValue) {
  int value = 0;
  base::SetThreadSlot(&value);
  EXPECT_EQ(base::GetThreadSlot(), &value);
  base::SetThreadSlot(nullptr);
  EXPECT_EQ(base::GetThreadSlot(), nullptr);
}

TEST(ThreadSlot, HasAValueForEachThread) {
  int ours = 0;
  int theirs = 0;
  base::SetThreadSlot(&ours);
  void* at_first = &ours;
  void* at_last = nullptr;
  RunOnStack(kSmallStack, [&] {
    at_first = base::GetThreadSlot();
    base::SetThreadSlot(&theirs);
    at_last = base::GetThreadSlot();
  });
  EXPECT_EQ(at_first, nullptr);
  EXPECT_EQ(at_last, &theirs);
  EXPECT_EQ(base::GetThreadSlot(), &ours);
  base::SetThreadSlot(nullptr);
}

}  // namespace
}  // namespace zqv::test
