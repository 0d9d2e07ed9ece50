#include "app/frame/dividers.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using Direction = Dividers::Direction;

class DividersTest : public ::testing::Test {
 protected:
  DividersTest() {
    dividers.onMoved = [this] {
      ++moves;
      layOut();
    };
    layOut();
  }

  void layOut() {
    request.dividers = dividers.places();
    layout = layOutFrame(request);
    dividers.follow(layout, request.listAboveMap);
  }

  void press(const ui::Rect& on, int clicks = 1) {
    EXPECT_TRUE(dividers.press({.x = on.x + 1, .y = on.y + 1, .button = 1, .clicks = clicks}));
  }
  void drag(int x, int y) { EXPECT_TRUE(dividers.drag({.x = x, .y = y})); }

  FrameRequest request{.width = 1000, .height = 700, .scale = 1, .lineHeight = 16, .dividers = {}};
  FrameLayout layout;
  Dividers dividers;
  int moves = 0;
};

TEST_F(DividersTest, KnowWhichWayTheyMove) {
  EXPECT_EQ(dividers.at(layout.mainDivider.x, layout.mainDivider.y), Direction::Across);
  EXPECT_EQ(dividers.at(layout.kindsDivider.x, layout.kindsDivider.y), Direction::Down);
  EXPECT_EQ(dividers.at(layout.map.x, layout.map.y), std::nullopt);
  request.listAboveMap = true;
  layOut();
  EXPECT_EQ(dividers.at(layout.mainDivider.x, layout.mainDivider.y), Direction::Down);
  EXPECT_EQ(dividers.at(layout.kindsDivider.x, layout.kindsDivider.y), Direction::Across);
}

TEST_F(DividersTest, FollowThePointerWhereTheyWereTakenHoldOf) {
  press(layout.mainDivider);
  drag(501, 300);
  EXPECT_EQ(layout.mainDivider.x, 500);
  drag(401, 300);
  EXPECT_EQ(layout.mainDivider.x, 400);
  EXPECT_EQ(moves, 2);
  dividers.release();
  EXPECT_FALSE(dividers.drag({.x = 600, .y = 300}));
  EXPECT_EQ(layout.mainDivider.x, 400);
}

TEST_F(DividersTest, MoveTheListAgainstTheKinds) {
  press(layout.kindsDivider);
  drag(10, 301);
  EXPECT_EQ(layout.kindsDivider.y, 300);
}

TEST_F(DividersTest, MoveInTheOtherOrientation) {
  request.listAboveMap = true;
  layOut();
  press(layout.mainDivider);
  drag(10, 401);
  EXPECT_EQ(layout.mainDivider.y, 400);
  dividers.release();
  press(layout.kindsDivider);
  drag(601, 500);
  EXPECT_EQ(layout.kindsDivider.x, 600);
}

TEST_F(DividersTest, KeepTheirDirectionWhileDraggedAway) {
  press(layout.mainDivider);
  EXPECT_EQ(dividers.at(0, 0), Direction::Across);
}

TEST_F(DividersTest, GoBackToTheirOwnPlaceOnADoublePress) {
  const int own = layout.mainDivider.x;
  press(layout.mainDivider);
  drag(600, 300);
  dividers.release();
  ASSERT_NE(layout.mainDivider.x, own);
  press(layout.mainDivider, 2);
  EXPECT_EQ(layout.mainDivider.x, own);
  EXPECT_FALSE(dividers.drag({.x = 600, .y = 300}));
}

TEST_F(DividersTest, LeaveOtherPressesAlone) {
  EXPECT_FALSE(dividers.press({.x = layout.map.x + 5, .y = layout.map.y + 5, .button = 1}));
  EXPECT_TRUE(dividers.press({.x = layout.mainDivider.x, .y = layout.mainDivider.y, .button = 3}));
  EXPECT_FALSE(dividers.drag({.x = 600, .y = 300}));
  EXPECT_EQ(moves, 0);
}

}  // namespace
}  // namespace app
