#include "app/refresh_pacer.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using Clock = RefreshPacer::Clock;
using std::chrono::milliseconds;

TEST(RefreshPacer, IsDueAtOnceAtFirst) { EXPECT_TRUE(RefreshPacer().due(Clock::now())); }

TEST(RefreshPacer, LeavesTwoThirdsOfTheTimeToOthers) {
  RefreshPacer pacer;
  const Clock::time_point start = Clock::now();
  pacer.ran(start, start + milliseconds(300));
  EXPECT_FALSE(pacer.due(start + milliseconds(899)));
  EXPECT_TRUE(pacer.due(start + milliseconds(900)));
}

}  // namespace
}  // namespace app
