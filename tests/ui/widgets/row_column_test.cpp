#include "ui/widgets/row_column.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

constexpr int kRow = 20;
constexpr ui::Rect kView = {10, 100, 200, 100};

class RowColumnTest : public testing::Test {
 protected:
  RowColumnTest() {
    column_.setView(kView, kRow);
    column_.setCount(50);
  }
  RowColumn column_;
};

TEST_F(RowColumnTest, HasItsRowsOneBelowTheOther) {
  column_.setCount(3);
  EXPECT_EQ(column_.rowRect(0), (ui::Rect{10, 100, 200, 20}));
  EXPECT_EQ(column_.rowRect(2), (ui::Rect{10, 140, 200, 20}));
  EXPECT_EQ(column_.rowAt(10, 159), 2u);
  EXPECT_EQ(column_.rowAt(10, 160), std::nullopt);
  EXPECT_EQ(column_.rowAt(10, 99), std::nullopt);
  EXPECT_EQ(column_.rowAt(210, 100), std::nullopt);
}

TEST_F(RowColumnTest, LeavesRoomForItsBar) {
  EXPECT_EQ(column_.rowRect(0).w, 200 - ui::Scroller::kBarWidth);
  EXPECT_EQ(column_.rowAt(205, 110), std::nullopt);
  EXPECT_EQ(column_.rowAt(195, 110), 0u);
}

TEST_F(RowColumnTest, RevealsARowByScrollingAsLittleAsPossible) {
  column_.reveal(4);
  EXPECT_EQ(column_.scroller().offset(), 0);
  column_.reveal(10);
  EXPECT_EQ(column_.scroller().offset(), 11 * kRow - 100);
  column_.reveal(2);
  EXPECT_EQ(column_.scroller().offset(), 2 * kRow);
}

TEST_F(RowColumnTest, ScrollsThreeRowsAStepOfTheWheel) {
  column_.wheel(1);
  EXPECT_EQ(column_.scroller().offset(), 3 * kRow);
  EXPECT_EQ(column_.rowAt(10, 100), 3u);
  column_.wheel(-5);
  EXPECT_EQ(column_.scroller().offset(), 0);
}

TEST_F(RowColumnTest, BeginsAtTheTopWithOtherRows) {
  column_.wheel(4);
  column_.setCount(40);
  EXPECT_EQ(column_.scroller().offset(), 0);
}

TEST_F(RowColumnTest, MovesByKeys) {
  using namespace ui::key;
  EXPECT_EQ(column_.rowAfterKey(kDown, 3), 4u);
  EXPECT_EQ(column_.rowAfterKey(kUp, 3), 2u);
  EXPECT_EQ(column_.rowAfterKey(kPageDown, 3), 7u);
  EXPECT_EQ(column_.rowAfterKey(kPageUp, 7), 3u);
  EXPECT_EQ(column_.rowAfterKey(kHome, 7), 0u);
  EXPECT_EQ(column_.rowAfterKey(kEnd, 7), 49u);
  EXPECT_EQ(column_.rowAfterKey(kLeft, 7), std::nullopt);
}

TEST_F(RowColumnTest, StaysWithinItsRows) {
  using namespace ui::key;
  EXPECT_EQ(column_.rowAfterKey(kDown, 49), 49u);
  EXPECT_EQ(column_.rowAfterKey(kPageDown, 48), 49u);
  EXPECT_EQ(column_.rowAfterKey(kUp, 0), 0u);
  EXPECT_EQ(column_.rowAfterKey(kPageUp, 1), 0u);
  column_.setCount(0);
  EXPECT_EQ(column_.rowAfterKey(kDown, std::nullopt), std::nullopt);
}

TEST_F(RowColumnTest, BeginsWithItsFirstRow) {
  for (const auto key : {ui::key::kDown, ui::key::kUp, ui::key::kPageDown, ui::key::kHome}) {
    EXPECT_EQ(column_.rowAfterKey(key, std::nullopt), 0u);
  }
  EXPECT_EQ(column_.rowAfterKey(ui::key::kEnd, std::nullopt), 49u);
}

TEST_F(RowColumnTest, HasARowUnderThePointer) {
  EXPECT_TRUE(column_.motion(20, 125));
  EXPECT_EQ(column_.hovered(), 1u);
  EXPECT_FALSE(column_.motion(25, 126));
  EXPECT_TRUE(column_.leave());
  EXPECT_EQ(column_.hovered(), std::nullopt);
  EXPECT_FALSE(column_.leave());
}

TEST_F(RowColumnTest, HasNoRowUnderThePointerThatHoldsTheBar) {
  EXPECT_TRUE(column_.pressBar(205, 105));
  EXPECT_TRUE(column_.motion(100, 150));
  EXPECT_GT(column_.scroller().offset(), 0);
  EXPECT_EQ(column_.hovered(), std::nullopt);
  column_.release();
  EXPECT_TRUE(column_.motion(100, 150));
  EXPECT_TRUE(column_.hovered());
}

}  // namespace
}  // namespace ui
