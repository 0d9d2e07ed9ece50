#include "app/model/preview_budget.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using Clock = PreviewBudget::Clock;
using std::chrono::hours;
using std::chrono::milliseconds;

constexpr Clock::time_point kBegin{hours(1)};

TEST(PreviewBudget, AllowsTheFirstPictureAtOnce) {
  EXPECT_TRUE(PreviewBudget(kBegin).allows(kBegin));
}

TEST(PreviewBudget, GivesPicturesATenthOfTheTime) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(20));
  // 20 ms are spent, the next picture takes as long.
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(399)));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(400)));
  budget.spend(milliseconds(20));
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(599)));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(600)));
}

TEST(PreviewBudget, GoesByWhatTheLastPictureHasCost) {
  PreviewBudget budget(kBegin);
  budget.spend(milliseconds(100));
  budget.spend(milliseconds(10));
  EXPECT_FALSE(budget.allows(kBegin + milliseconds(1199)));
  EXPECT_TRUE(budget.allows(kBegin + milliseconds(1200)));
}

}  // namespace
}  // namespace app
