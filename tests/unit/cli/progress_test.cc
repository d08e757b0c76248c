#include "cli/progress.h"

#include <gtest/gtest.h>

namespace zqv::cli {
namespace {

using Seconds = std::chrono::duration<double>;

TEST(DurationTextTest, GrowsWithTheDuration) {
  EXPECT_EQ(DurationText(Seconds(0)), "0.0 s");
  EXPECT_EQ(DurationText(Seconds(9.94)), "9.9 s");
  EXPECT_EQ(DurationText(Seconds(10)), "10 s");
  EXPECT_EQ(DurationText(Seconds(59.4)), "59 s");
  EXPECT_EQ(DurationText(Seconds(59.6)), "1:00");
  EXPECT_EQ(DurationText(Seconds(70)), "1:10");
  EXPECT_EQ(DurationText(Seconds(3 * 3600 + 2 * 60 + 7)), "3:02:07");
}

TEST(ProgressTextTest, ShowsRateAndTimeLeft) {
  // A quarter of the bytes took ten seconds, so the rest takes thirty.
  EXPECT_EQ(ProgressText(1200, 250, 1000, Seconds(10)),
            "1,200 messages, 120 a second, 25 %, 30 s left");
}

TEST(ProgressTextTest, IsEmptyInTheFirstSecond) {
  EXPECT_EQ(ProgressText(1, 250, 1000, Seconds(0.5)), "1 message, 25 %");
}

TEST(ProgressTextTest, ShowsNoShareOfAnUnknownTotal) {
  EXPECT_EQ(ProgressText(30, 250, 0, Seconds(10)), "30 messages, 3 a second");
  EXPECT_EQ(ProgressText(30, 0, 1000, Seconds(10)), "30 messages, 3 a second");
}

TEST(ProgressTextTest, StopsAtTheTotal) {
  EXPECT_EQ(ProgressText(30, 1200, 1000, Seconds(10)),
            "30 messages, 3 a second, 100 %, 0.0 s left");
}

}  // namespace
}  // namespace zqv::cli
