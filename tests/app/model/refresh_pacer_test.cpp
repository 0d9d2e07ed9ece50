#include "app/model/refresh_pacer.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using Clock = RefreshPacer::Clock;
using std::chrono::milliseconds;

/// Works for `duration`, as the making of a picture does.
Clock::time_point workFor(Clock::duration duration) {
  const Clock::time_point end = Clock::now() + duration;
  while (Clock::now() < end) {
  }
  return end;
}

TEST(RefreshPacer, IsDueAtOnceAtFirst) { EXPECT_TRUE(RefreshPacer().due(Clock::now())); }

TEST(RefreshPacer, LeavesTwoThirdsOfTheTimeToOthers) {
  RefreshPacer pacer;
  Clock::time_point end;
  const Clock::time_point before = Clock::now();
  pacer.run([&] {
    end = workFor(milliseconds(50));
    return true;
  });
  const Clock::time_point after = Clock::now();
  EXPECT_FALSE(pacer.due(end + milliseconds(99)));
  EXPECT_TRUE(pacer.due(after + 2 * (after - before)));
}

TEST(RefreshPacer, KeepsThePauseWhenNothingWasMade) {
  RefreshPacer pacer;
  Clock::time_point end;
  pacer.run([&] {
    end = workFor(milliseconds(50));
    return true;
  });
  pacer.run([] { return false; });
  EXPECT_FALSE(pacer.due(end + milliseconds(99)));
}

TEST(RefreshPacer, PausesTwiceAsLongAsAPartTookThatHasEnded) {
  RefreshPacer pacer;
  const Clock::time_point before = Clock::now();
  pacer.pauseAfter(milliseconds(50));
  const Clock::time_point after = Clock::now();
  EXPECT_FALSE(pacer.due(before + milliseconds(99)));
  EXPECT_TRUE(pacer.due(after + milliseconds(100)));
}

TEST(RefreshPacer, KeepsTheLongerPause) {
  RefreshPacer pacer;
  const Clock::time_point before = Clock::now();
  pacer.pauseAfter(milliseconds(50));
  pacer.pauseAfter(milliseconds(1));
  EXPECT_FALSE(pacer.due(before + milliseconds(99)));
}

TEST(RefreshPacer, IsStillDueWhenNothingWasMade) {
  RefreshPacer pacer;
  pacer.run([] {
    workFor(milliseconds(5));
    return false;
  });
  EXPECT_TRUE(pacer.due(Clock::now()));
}

}  // namespace
}  // namespace app
