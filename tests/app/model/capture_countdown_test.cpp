#include "app/model/capture_countdown.h"

#include <gtest/gtest.h>

#include <limits>

namespace app {
namespace {

/// The tick, counted from 1, at which the file is to be written; 0 when it is not within 100 ticks.
int tickOfCapture(double seconds, int scanTicks = 0) {
  CaptureCountdown countdown;
  countdown.start("f.ppm", seconds);
  for (int tick = 1; tick <= 100; ++tick) {
    if (const auto file = countdown.tick(tick <= scanTicks)) {
      EXPECT_EQ(*file, "f.ppm");
      return tick;
    }
  }
  return 0;
}

TEST(CaptureCountdown, WaitsForTheWholeTenthsOfItsDelay) {
  EXPECT_EQ(tickOfCapture(1.0), 10);
  EXPECT_EQ(tickOfCapture(0.99), 9);
  EXPECT_EQ(tickOfCapture(0.25), 2);
}

TEST(CaptureCountdown, CapturesAtTheFirstTickWithoutADelay) {
  EXPECT_EQ(tickOfCapture(0), 1);
  EXPECT_EQ(tickOfCapture(-3), 1);
  EXPECT_EQ(tickOfCapture(0.09), 1);
  EXPECT_EQ(tickOfCapture(std::numeric_limits<double>::quiet_NaN()), 1);
}

TEST(CaptureCountdown, WaitsForTheEndOfTheScan) {
  EXPECT_EQ(tickOfCapture(0, 7), 8);
  EXPECT_EQ(tickOfCapture(1.0, 7), 10);
}

TEST(CaptureCountdown, WaitsForEverForAnEndlessDelay) {
  EXPECT_EQ(tickOfCapture(std::numeric_limits<double>::infinity()), 0);
  EXPECT_EQ(tickOfCapture(1e300), 0);
}

TEST(CaptureCountdown, CapturesOnce) {
  CaptureCountdown countdown;
  countdown.start("f.ppm", 0);
  EXPECT_TRUE(countdown.tick(false));
  EXPECT_FALSE(countdown.tick(false));
}

TEST(CaptureCountdown, CapturesNothingUnasked) { EXPECT_FALSE(CaptureCountdown().tick(false)); }

}  // namespace
}  // namespace app
