#include "ui/widgets/row_geometry.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

constexpr std::size_t kMillion = 1000000;

TEST(VisibleRows, AreThoseInTheViewAndAtMostTwoMore) {
  EXPECT_EQ(visibleRows(0, 100, 20, kMillion), (RowRange{0, 7})) << "five fit";
  EXPECT_EQ(visibleRows(20 * 500000, 100, 20, kMillion), (RowRange{500000, 500007}));
  EXPECT_EQ(visibleRows(19, 100, 20, kMillion), (RowRange{0, 7})) << "six show in part";
}

TEST(VisibleRows, EndWithTheLastRow) {
  EXPECT_EQ(visibleRows(0, 100, 20, 3), (RowRange{0, 3}));
  EXPECT_EQ(visibleRows(900, 100, 20, 50), (RowRange{45, 50}));
  EXPECT_EQ(visibleRows(0, 100, 20, 0), RowRange{});
}

TEST(VisibleRows, AreNoneWithoutAView) {
  EXPECT_EQ(visibleRows(40, 0, 20, 10), RowRange{});
  EXPECT_EQ(visibleRows(40, -5, 20, 10), RowRange{});
}

TEST(VisibleRows, AreFoundWhereAnOffsetComesNearTheGreatestNumber) {
  constexpr std::size_t kRows = 100000000;
  const RowRange rows = visibleRows(kMostContentHeight, 2000, 88, kRows);
  EXPECT_EQ(rows.first, static_cast<std::size_t>(kMostContentHeight / 88));
  EXPECT_LE(rows.last - rows.first, 2000u / 88 + 3);
}

TEST(ContentHeight, IsThatOfAllRowsUpToALimit) {
  EXPECT_EQ(contentHeight(0, 22), 0);
  EXPECT_EQ(contentHeight(kMillion, 88), 88000000);
  EXPECT_EQ(contentHeight(100 * kMillion, 88), kMostContentHeight);
}

TEST(RowAtOffset, IsNoneOutsideTheRows) {
  EXPECT_EQ(rowAtOffset(-1, 20, 3), std::nullopt);
  EXPECT_EQ(rowAtOffset(0, 20, 3), 0u);
  EXPECT_EQ(rowAtOffset(59, 20, 3), 2u);
  EXPECT_EQ(rowAtOffset(60, 20, 3), std::nullopt);
}

TEST(RowPlace, OfARowThatIsFarAwayIsOutOfSight) {
  EXPECT_EQ(rowPlace(100, 30), 70);
  EXPECT_EQ(rowPlace(10, 30), -20);
  EXPECT_GT(rowPlace(rowTop(1000 * kMillion, 88), 0), 1000 * 1000);
}

TEST(ShowsInView, IsTrueForRowsInPart) {
  EXPECT_FALSE(showsInView(0, 20, 100, 20));
  EXPECT_TRUE(showsInView(0, 19, 100, 20));
  EXPECT_TRUE(showsInView(5, 1, 100, 20));
  EXPECT_FALSE(showsInView(5, 0, 100, 20));
}

TEST(RowsInPage, KeepOneInSight) {
  EXPECT_EQ(rowsInPage(100, 20), 4u);
  EXPECT_EQ(rowsInPage(20, 20), 1u);
  EXPECT_EQ(rowsInPage(0, 20), 1u);
}

}  // namespace
}  // namespace ui
