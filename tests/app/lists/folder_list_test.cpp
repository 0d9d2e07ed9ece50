#include "app/lists/folder_list.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tests/app/lists/folder_list_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

// Drawing. In the first row x0 is 20 + 6, then 16 more at each level.

TEST_F(FolderListTest, FillsItsPlaceWithTheViewColourAndNothingElse) {
  list_.show(nullptr);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.count(rgb(ui::kLightPalette.view)), place_.w * place_.h);
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - place_.w * place_.h);
}

TEST_F(FolderListTest, DrawsAnOpenTriangleDownwards) {
  const test::Picture picture = painted();
  const std::uint32_t dim = rgb(ui::kLightPalette.dimText);
  for (int i = 0; i < 5; ++i) {
    const int y = 10 + mid_ - 2 + i;
    EXPECT_EQ(picture.at(26 + i, y), dim) << i;
    EXPECT_EQ(picture.at(34 - i, y), dim) << i;
    EXPECT_EQ(ink(picture, {26, y, 9, 1}, rgb(ui::kLightPalette.view)), 9 - 2 * i);
  }
  EXPECT_EQ(ink(picture, {20, 10, 18, h_}, rgb(ui::kLightPalette.view)), 9 + 7 + 5 + 3 + 1);
}

TEST_F(FolderListTest, DrawsAClosedTriangleRightwards) {
  const test::Picture picture = painted();
  const int mid = 10 + h_ + mid_;
  for (int i = 0; i < 5; ++i) {
    const int x = 26 + 16 + 2 + i;
    EXPECT_EQ(ink(picture, {x, 10 + h_, 1, h_}, rgb(ui::kLightPalette.view)), 9 - 2 * i) << i;
    EXPECT_EQ(picture.at(x, mid - 4 + i), rgb(ui::kLightPalette.dimText));
    EXPECT_EQ(picture.at(x, mid + 4 - i), rgb(ui::kLightPalette.dimText));
  }
}

TEST_F(FolderListTest, DrawsNoTriangleWhereNothingOpens) {
  const test::Picture picture = painted();
  EXPECT_EQ(ink(picture, {20, 10 + 2 * h_, 16 + 6 + 12, h_}, rgb(ui::kLightPalette.view)), 0);
}

TEST_F(FolderListTest, DrawsTheSwatchInTheColourOfTheKind) {
  const test::Picture picture = painted();
  const std::uint32_t colour = rgb(colours_.colourForKind(tree_.kind(small_)));
  const int x = 26 + 16 + 12;
  const int y = 10 + 2 * h_ + mid_ - 4;
  EXPECT_EQ(picture.at(x, y), colour);
  EXPECT_EQ(picture.at(x + 7, y + 7), colour);
  EXPECT_EQ(picture.at(x - 1, y), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x + 8, y + 7), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x, y - 1), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x, y + 8), rgb(ui::kLightPalette.view));
}

TEST_F(FolderListTest, DrawsNoSwatchWithoutColours) {
  FolderList plain(style_, nullptr, selection_);
  plain.setRect(place_);
  plain.show(&tree_);
  plain.prepare();
  show(kWidth, kHeight);
  const test::Picture picture = paint([&](ui::Canvas& canvas) { plain.paint(canvas); });
  EXPECT_EQ(ink(picture, {54, 10 + 2 * h_, 8, h_}, rgb(ui::kLightPalette.view)), 0);
  EXPECT_GT(ink(picture, {26 + 16 + 26, 10 + 2 * h_, 60, h_}, rgb(ui::kLightPalette.view)), 20)
      << "the name keeps its place";
}

TEST_F(FolderListTest, DrawsNameAndSizeInTheirColumns) {
  const test::Picture picture = painted();
  const std::uint32_t view = rgb(ui::kLightPalette.view);
  const int y = 10 + 2 * h_;
  const int nameX = 26 + 16 + 26;
  const int nameWidth = style_.textWidth("small.txt");
  EXPECT_GT(ink(picture, {nameX, y, nameWidth, h_}, view), 50);
  EXPECT_EQ(ink(picture, {nameX + nameWidth + 1, y, 80, h_}, view), 0);
  const int sizeWidth = style_.textWidth("5 B");
  EXPECT_GT(ink(picture, {260 - sizeWidth, y, sizeWidth, h_}, view), 10);
  EXPECT_EQ(ink(picture, {260 - 70, y, 70 - sizeWidth - 1, h_}, view), 0);
}

TEST_F(FolderListTest, ShowsTheSizeUnderTheMeasure) {
  add(tree_, Listing(empty_).file("on disk", 0, 1234567));
  list_.refresh();
  const test::Picture byLength = painted();
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(list_.rows().rows()[1].node, empty_) << "the largest on disk";
  const test::Picture onDisk = painted();
  const ui::Rect sizes = {260 - 70, 10, 70, h_};
  EXPECT_GT(ink(onDisk, sizes, rgb(ui::kLightPalette.view)),
            ink(byLength, sizes, rgb(ui::kLightPalette.view)))
      << "\"1.23 MB\" is longer than \"108 B\"";
}

TEST_F(FolderListTest, DrawsASelectedRowInTheAccentColours) {
  selection_.select(big_);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(259, 10 + 2 * h_ - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(20, 10 + 2 * h_), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(44, 10 + h_ + mid_), rgb(ui::kLightPalette.accentText)) << "the triangle";
  for (const ui::Rect& part : {ui::Rect{68, 10 + h_, 40, h_}, ui::Rect{190, 10 + h_, 70, h_}}) {
    EXPECT_GT(ink(picture, part, rgb(ui::kLightPalette.accent)), 10) << "text at " << part.x;
    for (int y = part.y; y < part.y + part.h; ++y) {
      for (int x = part.x; x < part.x + part.w; ++x) {
        EXPECT_GE(picture.at(x, y) >> 16, rgb(ui::kLightPalette.accent) >> 16) << "light on accent";
      }
    }
  }
}

TEST_F(FolderListTest, VeilsTheRowUnderThePointer) {
  list_.motion({.x = 100, .y = 10 + h_ + 5});
  EXPECT_EQ(changes_, 1);
  list_.motion({.x = 101, .y = 10 + h_ + 6});
  EXPECT_EQ(changes_, 1) << "the same row";
  test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_), 0xF5F5F5u);
  EXPECT_EQ(picture.at(259, 10 + 2 * h_ - 1), 0xF5F5F5u);
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.view));
  selection_.select(big_);
  EXPECT_EQ(painted().at(20, 10 + h_), rgb(ui::kLightPalette.accent)) << "without a veil";
  selection_.clear();
  list_.leave();
  EXPECT_EQ(changes_, 2);
  EXPECT_EQ(painted().at(20, 10 + h_), rgb(ui::kLightPalette.view));
}

TEST(FolderListDark, VeilsTheRowUnderThePointerInWhite) {
  ListOnServer dark({}, ui::kDarkPalette);
  dark.list_.motion({.x = 100, .y = dark.rowY(1)});
  const test::Picture picture = dark.painted();
  EXPECT_EQ(picture.at(20, 10 + dark.h_ - 1), rgb(ui::kDarkPalette.view));
  const std::uint32_t veiled = picture.at(20, 10 + dark.h_);
  EXPECT_NEAR(static_cast<double>(veiled & 0xFF), 0x33 + (0xFF - 0x33) * 14 / 255.0, 1);
}

TEST_F(FolderListTest, GivesTheNameTwentyPixelsHoweverNarrowItIs) {
  list_.setRect({20, 10, 40, 110});
  EXPECT_NE(painted().count(rgb(ui::kLightPalette.view)), 40 * 110);
  // A list that ends where the size begins: the name of the first row has 20 pixels, no more.
  list_.setRect({20, 10, 32 + 20 + 8 + 80 - 30, 110});
  const test::Picture picture = painted();
  const int x = 26 + 26;
  EXPECT_GT(ink(picture, {x, 10, 20, h_}, rgb(ui::kLightPalette.view)), 3) << "the r";
}

TEST_F(FolderListTest, DrawsNoNameForAnEmptyOneButSwatchAndSize) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("", 7));
  list_.show(&tree);
  const test::Picture picture = painted();
  const std::uint32_t view = rgb(ui::kLightPalette.view);
  EXPECT_EQ(ink(picture, {68, 10 + h_, 260 - 70 - 68, h_}, view), 0);
  EXPECT_EQ(ink(picture, {54, 10 + h_, 8, h_}, view), 64);
  EXPECT_GT(ink(picture, {190, 10 + h_, 70, h_}, view), 10);
}

TEST_F(FolderListTest, StaysInItsPlace) {
  fillEmpty(30);
  list_.revealNode(tree_.children(empty_).first);
  list_.prepare();
  list_.wheel({}, 1);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - place_.w * place_.h);
}

TEST_F(FolderListTest, HasABarOnlyWhenItsRowsAreHigherThanItself) {
  EXPECT_EQ(list_.rowRect(0).w, 240);
  EXPECT_EQ(painted().at(255, 10), rgb(ui::kLightPalette.view));
  list_.setRect({20, 10, 240, 5 * h_ - 1});
  EXPECT_EQ(list_.rowRect(0).w, 230);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(250, 10), rgb(ui::kLightPalette.raised));
  EXPECT_EQ(picture.at(255, 30), rgb(ui::kLightPalette.dimText));
  const int sizeWidth = style_.textWidth("5 B");
  EXPECT_GT(
      ink(picture, {250 - sizeWidth, 10 + 2 * h_, sizeWidth, h_}, rgb(ui::kLightPalette.view)), 10);
}

TEST_F(FolderListTest, RingsTheCurrentRowWhileItHasTheFocus) {
  list_.setFocused(true);
  EXPECT_EQ(changes_, 1);
  test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(259, 10 + h_ - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(21, 11), rgb(ui::kLightPalette.view));
  selection_.select(kRootNode);
  picture = painted();
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(21, 11), rgb(ui::kLightPalette.accentText));
  EXPECT_EQ(picture.at(22, 12), rgb(ui::kLightPalette.accent));
  list_.setFocused(false);
  EXPECT_EQ(painted().at(21, 11), rgb(ui::kLightPalette.accent));
}

TEST_F(FolderListTest, IsRingedItselfWhileTheCurrentRowIsOutOfSight) {
  fillEmpty(30);
  list_.revealNode(tree_.children(empty_).first);
  list_.setFocused(true);
  key(ui::key::kHome);
  const auto corner = [&] { return painted().at(20, 10 + place_.h - 1); };
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.view));
  list_.wheel({}, 100);
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.accent));
  list_.setFocused(false);
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.view));
}

TEST(FolderListAtScaleTwo, GrowsRowsIndentAndSizeColumnOnly) {
  ListOnServer twice({.resources = "Xft.dpi:\t192\n"});
  ASSERT_GE(twice.h_, 44);
  const test::Picture picture = twice.painted();
  const std::uint32_t colour = rgb(twice.colours_.colourForKind(sizewalk::kKindFolder));
  const int x = 20 + 32 + 6 + 12;
  const int y = 10 + twice.h_ + twice.mid_ - 4;
  EXPECT_EQ(picture.at(x, y), colour);
  EXPECT_EQ(picture.at(x + 7, y + 7), colour);
  EXPECT_NE(picture.at(x + 8, y), colour);
}

// Scrolling to a row, and staying put.

TEST_F(FolderListTest, ScrollsToARowOnceAndForgetsIt) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first + 40);
  const auto row = list_.rows().find(tree_.children(empty_).first + 40);
  ASSERT_TRUE(row);
  EXPECT_EQ(list_.pendingRow(), static_cast<std::ptrdiff_t>(*row));
  EXPECT_EQ(list_.scrollOffset(), 0) << "not before it is painted";
  list_.prepare();
  EXPECT_EQ(list_.pendingRow(), -1);
  EXPECT_EQ(list_.scrollOffset(), (static_cast<int>(*row) + 1 - 5) * h_);
  list_.wheel({}, -1);
  const int offset = list_.scrollOffset();
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), offset);
}

TEST_F(FolderListTest, HasNoRowToScrollToAtFirstNorAfterAWrongOne) {
  EXPECT_EQ(list_.pendingRow(), -1);
  list_.scrollToRow(5);
  EXPECT_EQ(list_.pendingRow(), -1);
  list_.revealNode(900);
  EXPECT_EQ(list_.pendingRow(), -1);
}

TEST_F(FolderListTest, WaitsForAViewBeforeItScrolls) {
  fillEmpty(50);
  list_.setRect({});
  list_.revealNode(tree_.children(empty_).first + 40);
  list_.prepare();
  list_.setRect(place_);
  list_.prepare();
  EXPECT_GT(list_.scrollOffset(), 500);
}

TEST_F(FolderListTest, FollowsARowThatMovesBeforeItIsScrolledTo) {
  fillEmpty(50);
  list_.revealNode(deep_);
  ASSERT_EQ(list_.pendingRow(), 3);
  list_.press({.x = 150, .y = rowY(2), .button = 1});
  key(ui::key::kEnd);
  ASSERT_EQ(list_.current(), empty_ + 3);
  press(1, {.button = 1}, 46);
  EXPECT_EQ(list_.pendingRow(), 4);
}

TEST_F(FolderListTest, OpensTheWayToANodeAndMakesItCurrent) {
  list_.revealNode(deep_);
  EXPECT_EQ(names(), "r big inner deep file small.txt Other empty ");
  EXPECT_EQ(list_.current(), deep_);
  EXPECT_TRUE(selected().empty()) << "selecting is up to whoever asks";
}

/// The list scrolled into a folder of fifty files in it, its second row at its top.
class ScrolledFolderListTest : public FolderListTest {
 protected:
  ScrolledFolderListTest() {
    fillEmpty(50);
    list_.revealNode(tree_.children(empty_).first);
    list_.prepare();
    list_.wheel({}, 10);
    list_.wheel({}, -3);
    top_ = static_cast<std::size_t>(list_.scrollOffset()) / static_cast<std::size_t>(h_);
    changes_ = 0;
  }
  NodeId nodeOf(std::size_t row) const { return list_.rows().rows()[row].node; }
  int placeOf(NodeId node) const { return list_.rowRect(*list_.rows().find(node)).y; }
  void takeOut(NodeId node) {
    ASSERT_TRUE(tree_.removeSubtree(node).valid);
    list_.refresh();
  }
  std::size_t top_ = 0;
};

TEST_F(ScrolledFolderListTest, KeepsTheTopmostRowInPlace) {
  const NodeId node = nodeOf(top_);
  const int place = placeOf(node);
  takeOut(big_);
  EXPECT_EQ(placeOf(node), place);
  EXPECT_EQ(*list_.rows().find(node), top_ - 1);
}

TEST_F(ScrolledFolderListTest, KeepsTheRowUnderThePointerInPlaceBeforeAllOthers) {
  const NodeId hovered = nodeOf(top_ + 3);
  const NodeId pressed = nodeOf(top_ + 1);
  press(top_ + 1);
  moveOnto(top_ + 3);
  const int place = placeOf(hovered);
  const NodeId between = nodeOf(top_ + 2);
  takeOut(between);
  EXPECT_EQ(placeOf(hovered), place);
  EXPECT_EQ(placeOf(pressed), place - h_);
}

TEST_F(ScrolledFolderListTest, KeepsTheCurrentRowInPlaceWhenItIsInView) {
  const NodeId pressed = nodeOf(top_ + 3);
  press(top_ + 3);
  const int place = placeOf(pressed);
  takeOut(nodeOf(top_ + 1));
  EXPECT_EQ(placeOf(pressed), place);
}

TEST_F(ScrolledFolderListTest, KeepsASelectedRowInPlaceWhenTheCurrentOneIsOutOfView) {
  const NodeId chosen = nodeOf(top_ + 3);
  selection_.select(chosen);
  const int place = placeOf(chosen);
  takeOut(nodeOf(top_ + 1));
  EXPECT_EQ(placeOf(chosen), place);
}

TEST_F(ScrolledFolderListTest, KeepsTheNextRowInPlaceWhereThatUnderThePointerVanishes) {
  moveOnto(top_ + 2);
  const NodeId node = nodeOf(top_);
  const int place = placeOf(node);
  takeOut(nodeOf(top_ + 2));
  EXPECT_EQ(placeOf(node), place);
}

TEST_F(ScrolledFolderListTest, KeepsTheTopmostRowInPlaceWhereTheCurrentOneVanishes) {
  press(top_ + 2);
  const NodeId node = nodeOf(top_);
  const int place = placeOf(node);
  takeOut(nodeOf(top_ + 2));
  EXPECT_EQ(placeOf(node), place) << "not the row that is the current one instead";
}

TEST_F(ScrolledFolderListTest, HandsTheCurrentRowOnToTheNearestThatRemains) {
  press(top_ + 2);
  const NodeId below = nodeOf(top_ + 3);
  takeOut(nodeOf(top_ + 2));
  EXPECT_EQ(list_.current(), below);
  key(ui::key::kEnd);
  const NodeId above = nodeOf(list_.rows().rows().size() - 2);
  const NodeId last = *list_.current();
  takeOut(last);
  EXPECT_EQ(list_.current(), above);
  EXPECT_EQ(selected(), Nodes{last}) << "the selection is not the list's to change";
}

TEST_F(ScrolledFolderListTest, HandsTheCurrentRowOnBeyondAFolderThatIsTakenOut) {
  press(top_);
  const auto folder = list_.rows().find(empty_);
  ASSERT_TRUE(folder);
  const NodeId above = nodeOf(*folder - 1);
  takeOut(empty_);
  EXPECT_TRUE(list_.current() == above || list_.current() == other_);
  EXPECT_EQ(list_.scrollOffset(), 0) << "there is no more to scroll";
}

TEST_F(FolderListTest, StaysAtTheTopWhileResultsArrive) {
  fillEmpty(50, 1000);
  list_.refresh();
  EXPECT_EQ(names(), "r empty big small.txt Other ");
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.current(), kRootNode);
  EXPECT_EQ(changes_, 1);
}

TEST_F(FolderListTest, GetsItsFirstRowsWithTheTreesFirstNode) {
  sizewalk::FileTree unborn;
  list_.show(&unborn);
  EXPECT_FALSE(list_.current());
  unborn.createRoot("/x");
  list_.refresh();
  EXPECT_EQ(list_.current(), kRootNode);
  EXPECT_EQ(list_.rows().rows().size(), 1u);
}

TEST_F(FolderListTest, BeginsAtTheTopOfAnotherTree) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first + 40);
  list_.prepare();
  list_.show(&tree_);
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.current(), kRootNode);
  list_.revealNode(deep_);
  list_.show(nullptr);
  EXPECT_EQ(list_.pendingRow(), -1);
}

TEST_F(FolderListTest, MeasuresOtherwiseOnlyOnce) {
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(changes_, 1);
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(changes_, 1);
}

}  // namespace
}  // namespace app
