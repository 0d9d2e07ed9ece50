#include "ui/geometry.h"

#include <gtest/gtest.h>

#include <climits>

namespace ui {
namespace {

TEST(Intersect, GivesWhatBothShare) {
  EXPECT_EQ(intersect({0, 0, 10, 10}, {4, 6, 10, 10}), (Rect{4, 6, 6, 4}));
  EXPECT_EQ(intersect({4, 6, 10, 10}, {0, 0, 10, 10}), (Rect{4, 6, 6, 4}));
  EXPECT_EQ(intersect({0, 0, 10, 10}, {2, 3, 4, 5}), (Rect{2, 3, 4, 5}));
}

TEST(Intersect, OfRectanglesThatOnlyTouchIsAllZeros) {
  EXPECT_EQ(intersect({5, 5, 10, 10}, {15, 5, 10, 10}), (Rect{0, 0, 0, 0}));
  EXPECT_EQ(intersect({5, 5, 10, 10}, {5, 15, 10, 10}), (Rect{0, 0, 0, 0}));
}

TEST(Intersect, WithAnEmptyRectangleIsAllZeros) {
  EXPECT_EQ(intersect({0, 0, 10, 10}, {3, 3, 0, 5}), (Rect{0, 0, 0, 0}));
  EXPECT_EQ(intersect({0, 0, 10, 10}, {3, 3, 5, -1}), (Rect{0, 0, 0, 0}));
}

TEST(Intersect, TakesEdgesThatDoNotFitAnInt) {
  EXPECT_EQ(intersect({0, 0, 100, 100}, {50, -10, INT_MAX, INT_MAX}), (Rect{50, 0, 50, 100}));
}

TEST(Bounds, HoldBothRectangles) {
  EXPECT_EQ(bounds({0, 5, 10, 10}, {40, -6, 1, 2}), (Rect{0, -6, 41, 21}));
  EXPECT_EQ(bounds({0, 0, 10, 10}, {2, 3, 4, 5}), (Rect{0, 0, 10, 10}));
}

TEST(Bounds, AreCutOffWhereASideDoesNotFitAnInt) {
  EXPECT_EQ(bounds({-100, -100, 5, 5}, {50, 10, INT_MAX, INT_MAX}),
            (Rect{-100, -100, INT_MAX, INT_MAX}));
}

TEST(Rect, IsEmptyWithoutWidthOrHeight) {
  EXPECT_TRUE((Rect{1, 1, 0, 5}.empty()));
  EXPECT_TRUE((Rect{1, 1, 5, -2}.empty()));
  EXPECT_FALSE((Rect{-5, -5, 1, 1}.empty()));
}

TEST(Scaled, RoundsHalfUp) {
  EXPECT_EQ(scaled(10, 1.0), 10);
  EXPECT_EQ(scaled(1, 0.75), 1);
  EXPECT_EQ(scaled(3, 1.5), 5);
  EXPECT_EQ(scaled(5, 1.25), 6);
  EXPECT_EQ(scaled(1100, 4.0), 4400);
}

TEST(Scaled, CutsTowardZeroAfterAddingAHalf) {
  EXPECT_EQ(scaled(-1, 1.0), 0);
  EXPECT_EQ(scaled(-2, 1.0), -1);
}

}  // namespace
}  // namespace ui
