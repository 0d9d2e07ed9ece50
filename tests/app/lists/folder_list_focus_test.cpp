// How the folder list shows which folder the map is on.

#include "app/lists/folder_list.h"
#include "tests/app/lists/folder_list_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

constexpr int kMark = 3;

class FolderListFocusTest : public FolderListTest {
 protected:
  /// Of the row's left edge, how many pixels have this colour; -1 where some of them have not.
  static int markWidth(const test::Picture& picture, const ui::Rect& row, ui::Colour colour) {
    int width = 0;
    while (picture.at(row.x + width, row.y) == rgb(colour)) ++width;
    for (int y = row.y; y < row.y + row.h; ++y) {
      for (int x = row.x; x < row.x + width; ++x) {
        if (picture.at(x, y) != rgb(colour)) return -1;
      }
    }
    return width;
  }
  int rowOf(NodeId node) const { return static_cast<int>(list_.rows().find(node).value()); }
  bool seen(NodeId node) const {
    const ui::Rect row = list_.rowRect(list_.rows().find(node).value());
    return row.y >= place_.y && row.y + row.h <= place_.y + place_.h;
  }
  /// Opens the folder "empty", which is the last row, with so many rows in it.
  void openLast(int count) {
    fillEmpty(count, 0);
    list_.refresh();
    list_.revealNode(tree_.children(empty_).first);
    list_.prepare();
    list_.wheel({}, -100);
    list_.prepare();
    ASSERT_EQ(list_.scrollOffset(), 0);
  }
};

TEST_F(FolderListFocusTest, MarksTheRowOfTheFolderInFocus) {
  list_.setMapFocus(big_);
  EXPECT_EQ(changes_, 1);
  list_.setMapFocus(big_);
  EXPECT_EQ(changes_, 1);
  const test::Picture picture = painted();
  EXPECT_EQ(markWidth(picture, list_.rowRect(1), ui::kLightPalette.accent), kMark);
  for (const std::size_t row : {0u, 2u, 3u, 4u}) {
    EXPECT_EQ(markWidth(picture, list_.rowRect(row), ui::kLightPalette.accent), 0) << row;
  }
}

TEST_F(FolderListFocusTest, SetsTheMarkOfASelectedRowApartFromItsGround) {
  list_.setMapFocus(big_);
  selection_.select(big_);
  const test::Picture picture = painted();
  const ui::Rect row = list_.rowRect(1);
  EXPECT_EQ(markWidth(picture, row, ui::kLightPalette.accent), kMark);
  const ui::Rect beside = {row.x + kMark, row.y, row.w - kMark, row.h};
  EXPECT_EQ(markWidth(picture, beside, ui::kLightPalette.accentText), 1);
  EXPECT_EQ(picture.at(beside.x + 1, beside.y), rgb(ui::kLightPalette.accent));
}

TEST_F(FolderListFocusTest, MarksNoRowOfAFolderThatHasNone) {
  list_.setMapFocus(inner_);
  const test::Picture picture = painted();
  for (const std::size_t row : {0u, 1u, 2u, 3u, 4u}) {
    EXPECT_EQ(markWidth(picture, list_.rowRect(row), ui::kLightPalette.accent), 0) << row;
  }
}

TEST(FolderListFocusAtScaleTwo, MarksTwiceAsWideAndLeavesTheTriangleOut) {
  ListOnServer twice({.resources = "Xft.dpi:\t192\n"});
  twice.list_.setMapFocus(kRootNode);
  const test::Picture picture = twice.painted();
  const ui::Rect row = twice.list_.rowRect(0);
  EXPECT_EQ(picture.at(row.x, row.y), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(row.x + 2 * kMark - 1, row.y + row.h - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(row.x + 2 * kMark, row.y), rgb(ui::kLightPalette.view));
}

TEST(FolderListFocusAtScaleFour, LeavesTheTriangleFree) {
  ListOnServer large({.resources = "Xft.dpi:\t384\n"});
  large.list_.setRect({0, 0, 400, 8 * large.h_});
  const ui::Rect row = large.list_.rowRect(0);
  const auto triangle = [&] {
    const test::Picture picture = large.painted();
    std::vector<std::uint32_t> pixels;
    for (int y = row.y; y < row.y + row.h; ++y) {
      for (int x = row.x + 6; x < row.x + 15; ++x) pixels.push_back(picture.at(x, y));
    }
    return pixels;
  };
  const auto without = triangle();
  large.list_.setMapFocus(kRootNode);
  EXPECT_EQ(triangle(), without);
  EXPECT_EQ(large.painted().at(row.x + 5, row.y), rgb(ui::kLightPalette.accent));
}

TEST_F(FolderListFocusTest, ScrollsSoThatSomeOfAnOpenFolderIsSeen) {
  openLast(50);
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_TRUE(seen(empty_));
  EXPECT_EQ(list_.current(), empty_);
  EXPECT_TRUE(seen(list_.rows().rows()[static_cast<std::size_t>(rowOf(empty_)) + 4].node));
}

TEST_F(FolderListFocusTest, ScrollsNoFurtherThanToTheEndOfASmallFolder) {
  openLast(2);
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 2 * h_);
}

TEST_F(FolderListFocusTest, ScrollsNoFurtherThanSeveralRowsIntoALargeFolder) {
  list_.setRect({20, 10, 240, 12 * h_});
  openLast(50);
  list_.wheel({}, -100);
  list_.setRect({20, 10, 240, 8 * h_});
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 2 * h_) << "five rows of it are enough";
}

TEST_F(FolderListFocusTest, MovesNothingWhereAFolderIsInSightWithSomeOfItsContent) {
  openLast(50);
  list_.wheel({}, 1);
  list_.prepare();
  const int offset = list_.scrollOffset();
  ASSERT_EQ(offset, 3 * h_);
  list_.setRect({20, 10, 240, 10 * h_});
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), offset);
}

TEST_F(FolderListFocusTest, OpensAFolderThatIsClosed) {
  fillEmpty(50, 0);
  list_.refresh();
  list_.revealFolder(empty_);
  list_.prepare();
  const auto row = static_cast<std::size_t>(rowOf(empty_));
  EXPECT_TRUE(list_.rows().rows()[row].expanded);
  EXPECT_TRUE(seen(list_.rows().rows()[row + 1].node));
  list_.revealFolder(empty_);
  EXPECT_TRUE(list_.rows().rows()[row].expanded);
}

TEST_F(FolderListFocusTest, LeavesAFolderClosedThatHoldsVeryMuch) {
  fillEmpty(10'001, 0);
  list_.refresh();
  list_.revealFolder(empty_);
  EXPECT_FALSE(list_.rows().rows()[static_cast<std::size_t>(rowOf(empty_))].expanded);
}

TEST_F(FolderListFocusTest, ScrollsToTheRowAloneOfAFolderWithNothingInIt) {
  list_.setRect({20, 10, 240, 3 * h_});
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 2 * h_);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
}

TEST_F(FolderListFocusTest, ShowsTheFolderAtTheTopWhereItsContentHasNoRoomBelowIt) {
  openLast(50);
  list_.setRect({20, 10, 240, 2 * h_});
  list_.revealFolder(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), rowOf(empty_) * h_);
}

TEST_F(FolderListFocusTest, ForgetsTheContentWhenAnItemIsRevealedAfterTheFolder) {
  openLast(50);
  list_.revealFolder(empty_);
  list_.revealNode(big_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 0);
  list_.revealNode(empty_);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 0) << "its row is in view";
}

}  // namespace
}  // namespace app
