#include "ui/tick.h"

#include <gtest/gtest.h>

#include <memory>

namespace ui {
namespace {

TEST(Tick, IsFirstDueOneIntervalAfterItWasSet) {
  Tick tick;
  int ticks = 0;
  tick.set(
      100, [&] { ++ticks; }, 1000);
  tick.runIfDue(1099);
  EXPECT_EQ(ticks, 0);
  tick.runIfDue(1100);
  EXPECT_EQ(ticks, 1);
}

TEST(Tick, MissedWhileBusyIsNotMadeUpFor) {
  Tick tick;
  int ticks = 0;
  tick.set(
      100, [&] { ++ticks; }, 1000);
  tick.runIfDue(1350);
  EXPECT_EQ(ticks, 1);
  tick.runIfDue(1449);
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(tick.msUntilDue(1350), 100);
  tick.runIfDue(1450);
  EXPECT_EQ(ticks, 2);
}

TEST(Tick, WaitIsNeverNegative) {
  Tick tick;
  tick.set(
      100, [] {}, 1000);
  EXPECT_EQ(tick.msUntilDue(1000), 100);
  EXPECT_EQ(tick.msUntilDue(1099), 1);
  EXPECT_EQ(tick.msUntilDue(1500), 0);
}

TEST(Tick, WithoutOneTheWaitIsEndless) {
  Tick tick;
  EXPECT_EQ(tick.msUntilDue(1000), -1);
  tick.set(100, nullptr, 1000);
  EXPECT_EQ(tick.msUntilDue(1000), -1);
  tick.set(
      0, [] {}, 1000);
  EXPECT_EQ(tick.msUntilDue(1000), -1);
  tick.runIfDue(5000);
}

TEST(Tick, WithAnIntervalOfZeroOrLessNeverRuns) {
  Tick tick;
  int ticks = 0;
  tick.set(
      0, [&] { ++ticks; }, 1000);
  tick.runIfDue(2000);
  tick.set(
      -5, [&] { ++ticks; }, 1000);
  tick.runIfDue(2000);
  EXPECT_EQ(ticks, 0);
}

TEST(Tick, StoppedDestroysItsCallable) {
  Tick tick;
  auto token = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = token;
  tick.set(
      100, [held = std::move(token)] {}, 1000);
  EXPECT_FALSE(watched.expired());
  tick.stop();
  EXPECT_TRUE(watched.expired());
  EXPECT_FALSE(tick.installed());
}

TEST(Tick, MayReplaceItselfWhileItRuns) {
  Tick tick;
  int first = 0;
  int second = 0;
  const std::string captured(100, 'x');
  std::size_t seen = 0;
  tick.set(
      100,
      [&, captured] {
        ++first;
        tick.set(
            50, [&] { ++second; }, 1100);
        seen = captured.size();  // still alive
      },
      1000);
  tick.runIfDue(1100);
  tick.runIfDue(1150);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
  EXPECT_EQ(seen, 100u);
}

}  // namespace
}  // namespace ui
