#include "app/model/preview_budget.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using Clock = PreviewBudget::Clock;
using std::chrono::hours;
using std::chrono::milliseconds;

constexpr Clock::time_point kBegin{hours(1)};

TEST(PreviewBudget, AllowsTheFirstPictureAtOnce) {
  EXPECT_TRUE(PreviewBudget(kBegin).allows(kBegin, 1'000'000));
}

TEST(PreviewBudget, GivesPicturesATenthOfTheTime) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(20), 1000);
  // 20 ms are spent, the next picture takes as long.
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(399), 1000));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(400), 1000));
  budget.spend(milliseconds(20), 1000);
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(599), 1000));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(600), 1000));
}

TEST(PreviewBudget, ExpectsALargerTreeToTakeLonger) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(20), 1000);
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(2199), 10'000));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(2200), 10'000));
}

TEST(PreviewBudget, GoesByWhatTheLastPictureHasCost) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(100), 1000);
  budget.spend(milliseconds(10), 1000);
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(1199), 1000));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(1200), 1000));
}

TEST(PreviewBudget, KnowsAPictureOfNothing) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(1), 0);
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(19), 1));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(20), 1));
}

}  // namespace
}  // namespace app
