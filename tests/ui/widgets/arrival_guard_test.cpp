#include "ui/widgets/arrival_guard.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

constexpr Rect kHere = {10, 10, 50, 20};
constexpr Rect kThere = {10, 40, 50, 20};

/// A control that has been here since the time 1000.
class ArrivalGuardTest : public testing::Test {
 protected:
  ArrivalGuardTest() {
    guard_.place({{1, kHere}});
    guard_.tick(1000);
  }
  bool takes(ArrivalGuard::Control control, std::int64_t timeMs) {
    return guard_.takesPress(control, 20, 20, timeMs);
  }

  void movePointerOntoIt() {
    guard_.pointerAt(5, 5);
    guard_.pointerAt(20, 20);
  }

  ArrivalGuard guard_;
};

TEST_F(ArrivalGuardTest, HoldsANewControlBackForHalfASecond) {
  EXPECT_FALSE(takes(1, 1000));
  EXPECT_FALSE(takes(1, 1499));
  EXPECT_TRUE(takes(1, 1500));
}

TEST_F(ArrivalGuardTest, TakesPressesOnceThePointerHasMovedOnToIt) {
  movePointerOntoIt();
  EXPECT_TRUE(takes(1, 1001));
}

TEST_F(ArrivalGuardTest, SeesNoMoveInThePlaceWhereThePointerWas) {
  guard_.pointerAt(20, 20);
  guard_.pointerAt(20, 20);
  EXPECT_FALSE(takes(1, 1001));
}

TEST_F(ArrivalGuardTest, SeesNoMoveWhereItDoesNotKnowWhereThePointerWas) {
  guard_.pointerAt(5, 5);
  guard_.forgetPointer();
  guard_.pointerAt(20, 20);
  EXPECT_FALSE(takes(1, 1001));
  movePointerOntoIt();
  EXPECT_TRUE(takes(1, 1002));
}

TEST_F(ArrivalGuardTest, DoesNotTakeATremblingPointerForOneThatMovedOnToTheControl) {
  guard_.pointerAt(20, 20);
  guard_.pointerAt(22, 21);
  EXPECT_FALSE(takes(1, 1001));
}

TEST_F(ArrivalGuardTest, LeavesAloneWhatChangesItsPlaceAndStaysUnderThePointer) {
  movePointerOntoIt();
  guard_.place({{1, {10, 10, 80, 20}}});
  EXPECT_TRUE(takes(1, 1001));
}

TEST_F(ArrivalGuardTest, HoldsBackWhatTakesAnothersPlace) {
  movePointerOntoIt();
  guard_.place({{2, kHere}});
  EXPECT_FALSE(takes(1, 5000)) << "it is gone";
  EXPECT_FALSE(takes(2, 5000)) << "the half second begins when it is seen first";
  EXPECT_FALSE(takes(2, 5499));
  EXPECT_TRUE(takes(2, 5500));
}

TEST_F(ArrivalGuardTest, HoldsBackWhatHasMovedUnderThePointer) {
  guard_.place({{1, kThere}});
  guard_.place({{1, kHere}});
  guard_.tick(9000);
  EXPECT_FALSE(takes(1, 9499));
}

TEST_F(ArrivalGuardTest, LeavesAloneWhatStaysWhereItIs) {
  guard_.place({{1, kHere}, {2, kThere}});
  guard_.tick(1600);
  EXPECT_TRUE(takes(1, 1600));
  EXPECT_TRUE(takes(1, 1601)) << "quick presses all count";
}

}  // namespace
}  // namespace ui
