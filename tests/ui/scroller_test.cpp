#include "ui/scroller.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

/// A view of 200 x 100 at (10, 20) on content 1,000 high.
Scroller longList() {
  Scroller scroller;
  scroller.setView({10, 20, 200, 100});
  scroller.setContentHeight(1000);
  return scroller;
}

TEST(Scroller, StaysWithinItsContent) {
  Scroller scroller = longList();
  scroller.scrollBy(-5);
  EXPECT_EQ(scroller.offset(), 0);
  scroller.scrollBy(300);
  EXPECT_EQ(scroller.offset(), 300);
  scroller.scrollBy(100000);
  EXPECT_EQ(scroller.offset(), 900);
}

TEST(Scroller, ComesBackWhenTheContentShrinksOrTheViewGrows) {
  Scroller scroller = longList();
  scroller.scrollTo(900);
  scroller.setContentHeight(500);
  EXPECT_EQ(scroller.offset(), 400);
  scroller.setView({10, 20, 200, 450});
  EXPECT_EQ(scroller.offset(), 50);
  scroller.setContentHeight(0);
  EXPECT_EQ(scroller.offset(), 0);
}

TEST(Scroller, HasABarOnlyWhereTheContentIsHigherThanAViewWithAHeight) {
  Scroller scroller = longList();
  EXPECT_TRUE(scroller.hasBar());
  EXPECT_EQ(scroller.barWidth(), 10);
  EXPECT_EQ(scroller.bar(), (Rect{200, 20, 10, 100}));
  scroller.setContentHeight(100);
  EXPECT_FALSE(scroller.hasBar());
  EXPECT_EQ(scroller.barWidth(), 0);
  EXPECT_TRUE(scroller.bar().empty());
  EXPECT_TRUE(scroller.thumb().empty());
  scroller.setContentHeight(1000);
  scroller.setView({10, 20, 200, 0});
  EXPECT_FALSE(scroller.hasBar());
}

TEST(Scroller, RevealsABandByTheShortestWay) {
  Scroller scroller = longList();
  scroller.reveal(50, 20);
  EXPECT_EQ(scroller.offset(), 0) << "it is seen already";
  scroller.reveal(300, 20);
  EXPECT_EQ(scroller.offset(), 220) << "just above the bottom";
  scroller.reveal(230, 20);
  EXPECT_EQ(scroller.offset(), 220);
  scroller.reveal(100, 20);
  EXPECT_EQ(scroller.offset(), 100) << "just below the top";
  scroller.reveal(400, 150);
  EXPECT_EQ(scroller.offset(), 400) << "the top of what is higher than the view";
}

TEST(Scroller, DrawsItsThumbWhereTheViewStands) {
  Scroller scroller = longList();
  EXPECT_EQ(scroller.thumb(), (Rect{200, 20, 10, 24})) << "no smaller than can be hit";
  scroller.scrollTo(900);
  EXPECT_EQ(scroller.thumb(), (Rect{200, 96, 10, 24}));
  scroller.setContentHeight(200);
  EXPECT_EQ(scroller.thumb(), (Rect{200, 70, 10, 50}));
}

TEST(Scroller, PagesWhereTheBarIsPressedBesideTheThumb) {
  Scroller scroller = longList();
  EXPECT_TRUE(scroller.press(205, 110));
  EXPECT_EQ(scroller.offset(), 100);
  EXPECT_FALSE(scroller.drag(60)) << "nothing was taken hold of";
  EXPECT_TRUE(scroller.press(205, 21));
  EXPECT_EQ(scroller.offset(), 0);
  EXPECT_FALSE(scroller.press(100, 50)) << "not on the bar";
}

TEST(Scroller, FollowsADraggedThumbToBothEnds) {
  Scroller scroller = longList();
  ASSERT_TRUE(scroller.press(205, 30));  // ten below the thumb's top
  EXPECT_TRUE(scroller.drag(30));
  EXPECT_EQ(scroller.offset(), 0) << "taking hold moves nothing";
  scroller.drag(30 + 38);
  EXPECT_EQ(scroller.offset(), 450);
  scroller.drag(5000);
  EXPECT_EQ(scroller.offset(), 900);
  scroller.drag(-5000);
  EXPECT_EQ(scroller.offset(), 0);
  scroller.release();
  EXPECT_FALSE(scroller.drag(100));
}

TEST(Scroller, ReachesTheEndOfMillionsOfRows) {
  Scroller scroller = longList();
  scroller.setContentHeight(88'000'000);
  ASSERT_TRUE(scroller.press(205, 20));
  scroller.drag(20 + 76);
  EXPECT_EQ(scroller.offset(), 88'000'000 - 100);
}

}  // namespace
}  // namespace ui
