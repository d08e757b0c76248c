#include "host/stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/thread_stack.h"
#include "tests/unit/host/alone.h"

namespace zqv::test {
namespace {

struct Measured {
  std::uintptr_t frame;
  std::size_t left;
};

// Measures in `frames` frames inside one another, the outermost first.
[[gnu::noinline]] void MeasureInFrames(int frames, std::vector<Measured>& measured) {
  volatile char room[1'000];
  room[0] = 0;
  measured.push_back(
      {reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)), host::StackLeft().value()});
  if (frames > 1) MeasureInFrames(frames - 1, measured);
  room[1] = room[0];  // no tail call: the frame stays
}

TEST(Stack, LeftFallsByWhatEachFrameTakes) {
  std::vector<Measured> measured;
  MeasureInFrames(50, measured);
  ASSERT_EQ(measured.size(), 50U);
  for (std::size_t i = 1; i < measured.size(); ++i) {
    EXPECT_LT(measured[i].left, measured[i - 1].left);
    EXPECT_EQ(measured[i - 1].left - measured[i].left, measured[i - 1].frame - measured[i].frame);
  }
}

// What a thread needs before its function runs: the C library's own data and a guard page.
constexpr std::size_t kTakenByTheStart = 32 * 1024;

// The C library gives a thread a larger stack that an earlier thread has left; so this needs a
// process of its own, and sizes that rise.
TEST(Stack, LeftIsNearlyTheWholeStackWhenAThreadStarts) {
  if (!IsAlone()) return;
  for (const std::size_t bytes :
       {std::size_t{64} * 1024, std::size_t{256} * 1024, kSmallStack, kLargeStack}) {
    std::size_t left = 0;
    RunOnStack(bytes, [&left] { left = host::StackLeft().value(); });
    EXPECT_LE(left, bytes);
    EXPECT_GE(left, bytes - kTakenByTheStart);
  }
}

// Goes down until no more than `reserve` is left; gives the number of frames that it took.
[[gnu::noinline]] int UseAllBut(std::size_t reserve) {
  volatile char room[512];
  room[0] = 0;
  const int deeper = host::StackLeft().value() > reserve ? UseAllBut(reserve) : 0;
  return deeper + 1 + room[0];
}

TEST(Stack, LeftCanBeUsed) {
  RunOnStack(std::size_t{128} * 1024, [] { EXPECT_GT(UseAllBut(24 * 1024), 20); });
}

TEST(Stack, LeftIsKnownOnTheFirstThread) {
  const auto left = host::StackLeft();
  ASSERT_TRUE(left.has_value());
  EXPECT_GT(*left, std::size_t{64} * 1024);
}

}  // namespace
}  // namespace zqv::test
