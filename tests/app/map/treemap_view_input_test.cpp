// The map under presses, the wheel and the keys.

#include "app/map/treemap_view.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "tests/app/map/treemap_view_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

// Presses.

TEST_F(TreemapViewTest, SelectsTheItemThatIsPressed) {
  press(placeOf(a_));
  EXPECT_EQ(selected(), Nodes{a_});
  press(placeOf(c_));
  EXPECT_EQ(selected(), Nodes{c_});
  EXPECT_EQ(picked_, (Nodes{a_, c_}));
}

TEST_F(TreemapViewTest, AddsAndRemovesWithControl) {
  press(placeOf(a_));
  press(placeOf(c_), kPrimary, 1, true);
  EXPECT_EQ(selected(), (Nodes{c_, a_}));
  press(placeOf(a_), kPrimary, 1, true);
  EXPECT_EQ(selected(), Nodes{c_});
  EXPECT_EQ(picked_, (Nodes{a_, c_})) << "what is selected no longer need not be shown";
  press(placeOfSmallItems(), kPrimary, 1, true);
  EXPECT_EQ(selected(), Nodes{c_});
}

TEST_F(TreemapViewTest, TakesAQuickSecondPressWithControlAsOneMore) {
  press(placeOf(a_), kPrimary, 1, true);
  press(placeOf(a_), kPrimary, 2, true);
  EXPECT_EQ(selected(), Nodes{});
  EXPECT_EQ(focusChanges_, 0);
}

TEST_F(TreemapViewTest, SelectsNothingWhereThereIsNoItem) {
  for (const ui::Rect& nowhere : {placeOfSmallItems(), ui::Rect{kOutside, 50, 0, 0}}) {
    select({c_});
    press(nowhere);
    EXPECT_EQ(selected(), Nodes{});
  }
  EXPECT_EQ(picked_, Nodes{});
}

TEST_F(TreemapViewTest, FocusesTheFolderOnTheWayToAnItemPressedTwice) {
  pressTwice(placeOf(deep_));
  EXPECT_EQ(focus_.current(), dir_);
  EXPECT_EQ(selected(), Nodes{deep_});
  showFocus();
  pressTwice(placeOf(deep_));
  EXPECT_EQ(focus_.current(), inner_);
  EXPECT_EQ(focusChanges_, 2);
}

TEST_F(TreemapViewTest, StaysAtTheFocusWhenAnItemRightInItIsPressedTwice) {
  pressTwice(placeOf(c_));
  pressTwice(placeOfSmallItems());
  pressTwice({kOutside, 50, 0, 0});
  EXPECT_EQ(focusChanges_, 0);
}

TEST_F(TreemapViewTest, TakesPressesOfTwoButtonsAsTwo) {
  pressTwice(placeOf(a_), kSecondary, kPrimary);
  EXPECT_EQ(focusChanges_, 0);
  EXPECT_EQ(selected(), Nodes{a_});
  pressTwice(placeOf(a_), kPrimary, kSecondary);
  EXPECT_EQ(focusChanges_, 0);
  EXPECT_EQ(menus_, (Nodes{a_, a_}));
}

TEST_F(TreemapViewTest, TakesAThirdQuickPressAsASingleOne) {
  pressTwice(placeOf(deep_));
  press(placeOf(deep_), kPrimary, 3);
  EXPECT_EQ(focusChanges_, 1);
}

TEST_F(TreemapViewTest, GoesTwoLevelsInWithFourQuickPresses) {
  pressTwice(placeOf(deep_));
  showFocus();
  press(placeOf(deep_), kPrimary, 3);
  press(placeOf(deep_), kPrimary, 4);
  EXPECT_EQ(focus_.current(), inner_);
}

TEST_F(TreemapViewTest, SelectsWhatTheContextMenuIsOpenedOn) {
  select({c_});
  press(placeOf(a_), kSecondary);
  EXPECT_EQ(selected(), Nodes{a_});
  EXPECT_EQ(picked_, Nodes{a_});
  EXPECT_EQ(menus_, Nodes{a_});
  EXPECT_EQ(menuAt_.x, middleOf(placeOf(a_)).x);
  EXPECT_EQ(menuAt_.y, middleOf(placeOf(a_)).y);
}

TEST_F(TreemapViewTest, KeepsASelectionThatHoldsWhatTheContextMenuIsOpenedOn) {
  select({a_, c_});
  press(placeOf(a_), kSecondary);
  EXPECT_EQ(selected(), (Nodes{c_, a_}));
  EXPECT_EQ(picked_, Nodes{});
  EXPECT_EQ(menus_, Nodes{a_});
}

TEST_F(TreemapViewTest, OpensNoContextMenuWhereThereIsNoItem) {
  select({c_});
  press(placeOfSmallItems(), kSecondary);
  press({kOutside, 50, 0, 0}, kSecondary);
  EXPECT_EQ(menus_, Nodes{});
  EXPECT_EQ(selected(), Nodes{c_});
}

TEST_F(TreemapViewTest, GoesOutAndBackInWithTheOtherButtons) {
  focus_.go(inner_);
  showFocus();
  const ui::Rect anywhere = kPlace;
  press(anywhere, kMiddle);
  EXPECT_EQ(focus_.current(), dir_);
  press(anywhere, kBack);
  EXPECT_EQ(focus_.current(), kRootNode);
  press(anywhere, kBack);
  EXPECT_EQ(focus_.current(), kRootNode);
  press(anywhere, kForward);
  EXPECT_EQ(focus_.current(), dir_);
  press(anywhere, kForward);
  EXPECT_EQ(focus_.current(), inner_);
  press(anywhere, 10);
  EXPECT_EQ(focus_.current(), inner_);
  EXPECT_EQ(selected(), Nodes{});
}

TEST_F(TreemapViewTest, GoesInAndOutWithTheWheel) {
  std::int64_t nowMs = 0;
  const auto turn = [&](const ui::Rect& rect, int dy) { turnWheel(rect, dy, nowMs += 1000); };
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), dir_);
  showFocus();
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), inner_);
  showFocus();
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), inner_) << "a file is no folder";
  turn(placeOf(deep_), 0);
  EXPECT_EQ(focus_.current(), inner_) << "a tilt of the wheel is not meant";
  turn(placeOf(deep_), 1);
  turn({kOutside, 50, 0, 0}, 1);
  EXPECT_EQ(focus_.current(), kRootNode);
  showFocus();
  turn(placeOfSmallItems(), -1);
  turn({kOutside, 50, 0, 0}, -1);
  EXPECT_EQ(focus_.current(), kRootNode);
}

TEST_F(TreemapViewTest, GoesOneLevelWithABurstThatIsHandedOnLate) {
  const auto notch = [&](std::int64_t handedOnMs, std::uint32_t serverMs) {
    ui::MouseEvent event = atTime(handedOnMs, middleOf(placeOf(deep_)));
    event.serverMs = serverMs;
    view_.wheel(event, -1);
  };
  const std::uint32_t before = std::numeric_limits<std::uint32_t>::max() - 5;
  notch(1000, before);
  const NodeId first = focus_.current();
  EXPECT_NE(first, kRootNode);
  notch(1400, before + 20);
  notch(1800, before + 40);
  EXPECT_EQ(focus_.current(), first) << "the frame of the first took long";
  notch(1800, before + 150);
  EXPECT_NE(focus_.current(), first);
}

TEST_F(TreemapViewTest, GoesOneLevelWithABurstOfTheWheel) {
  for (int i = 0; i < 10; ++i) turnWheel(placeOf(deep_), -1, 1000 + 14 * i);
  turnWheel(placeOf(deep_), -1, 1149);
  EXPECT_EQ(focus_.current(), dir_);
  turnWheel(placeOf(deep_), -7, 1150);
  EXPECT_EQ(focus_.current(), inner_) << "several steps at once are one notch";
  turnWheel(kPlace, 1, 1299);
  EXPECT_EQ(focus_.current(), inner_) << "whichever way";
  for (int i = 0; i < 10; ++i) turnWheel(kPlace, 1, 1300 + 14 * i);
  EXPECT_EQ(focus_.current(), dir_);
  turnWheel(kPlace, 9, 1450);
  EXPECT_EQ(focus_.current(), kRootNode);
}

TEST_F(TreemapViewTest, DoesNotWaitAfterANotchThatWentNowhere) {
  turnWheel(kPlace, 1, 1000);
  turnWheel(placeOf(c_), -1, 1001);
  EXPECT_EQ(focus_.current(), kRootNode);
  turnWheel(placeOf(deep_), -1, 1002);
  EXPECT_EQ(focus_.current(), dir_);
}

TEST_F(TreemapViewTest, TakesNoSecondPressOnAnotherItemForADoubleOne) {
  press(placeOf(c_), kPrimary, 1);
  press(placeOf(a_), kPrimary, 2);
  EXPECT_EQ(focus_.current(), kRootNode);
  EXPECT_EQ(selected(), Nodes{a_});
}

// Keys.

/// Four files in two rows of two.
class TreemapViewKeysTest : public TreemapViewTest {
 protected:
  TreemapViewKeysTest() {
    test::fillRoot(four_, std::vector<test::MapEntry>(4, file(1000)));
    showTree(&four_);
  }
  ~TreemapViewKeysTest() override { showTree(nullptr); }

  bool key(unsigned long keysym, bool ctrl = false) {
    return view_.key({.keysym = keysym, .text = {}, .shift = false, .ctrl = ctrl});
  }
  /// The item in a column and a row of the two.
  NodeId at(int column, int row) {
    view_.motion({.x = kPlace.x + 50 + 100 * column, .y = kPlace.y + 25 + 50 * row});
    return view_.hovered().value();
  }

  sizewalk::FileTree four_;
};

TEST_F(TreemapViewKeysTest, BeginWithTheItemAtTheUpperLeft) {
  EXPECT_TRUE(key(ui::key::kDown));
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  EXPECT_EQ(picked_, selected());
}

TEST_F(TreemapViewKeysTest, GoToTheNeighbourOnThatSide) {
  select({at(0, 0)});
  key(ui::key::kRight);
  EXPECT_EQ(selected(), Nodes{at(1, 0)});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{at(1, 1)});
  key(ui::key::kKeypadLeft);
  EXPECT_EQ(selected(), Nodes{at(0, 1)});
  key(ui::key::kUp);
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  EXPECT_EQ(picked_, (Nodes{at(1, 0), at(1, 1), at(0, 1), at(0, 0)}));
}

TEST_F(TreemapViewKeysTest, StopAtTheEdgeOfTheMap) {
  select({at(0, 0)});
  EXPECT_TRUE(key(ui::key::kLeft));
  EXPECT_TRUE(key(ui::key::kUp));
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  select({at(1, 1)});
  key(ui::key::kRight);
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{at(1, 1)});
  EXPECT_EQ(picked_, Nodes{});
}

TEST_F(TreemapViewKeysTest, GoOnPastMergedItems) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  const auto left = test::fillRoot(tree, {folder(), file(200'000)}).front();
  std::vector<test::MapEntry> entries = {file(300'000)};
  entries.resize(4001, file(2));
  test::fill(tree, left, entries);
  showTree(&tree);
  const NodeId inLeft = tree.firstChild(left);
  const NodeId right = left + 1;
  ASSERT_LT(placeOf(inLeft).x + placeOf(inLeft).w, placeOf(right).x) << "side by side, with a gap";
  select({inLeft});
  key(ui::key::kRight);
  EXPECT_EQ(selected(), Nodes{right});
  key(ui::key::kLeft);
  EXPECT_EQ(selected(), Nodes{inLeft});
  showTree(&four_);
}

TEST_F(TreemapViewKeysTest, BeginWithTheFirstItemThatIsNotMerged) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  const auto first = test::fillRoot(tree, {folder(), file(100'000)}).front();
  test::fill(tree, first, std::vector<test::MapEntry>(100'000, file(2)));
  showTree(&tree);
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{first + 1});
  showTree(&four_);
}

TEST_F(TreemapViewKeysTest, BeginAnewWithSeveralItemsSelected) {
  select({at(1, 0), at(1, 1)});
  key(ui::key::kLeft);
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
}

TEST_F(TreemapViewKeysTest, AreLeftToOthersWithControlOrWithoutAMeaning) {
  EXPECT_FALSE(key(ui::key::kLeft, true));
  EXPECT_FALSE(key(ui::key::kReturn, true));
  EXPECT_FALSE(key(ui::key::kHome));
  EXPECT_FALSE(key('a'));
  EXPECT_EQ(selected(), Nodes{});
}

TEST_F(TreemapViewKeysTest, FocusTheFolderOnTheWayToTheSelectedItem) {
  showTree(&tree_);
  select({deep_, c_});
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_EQ(focus_.current(), kRootNode) << "there are two ways";
  select({deep_});
  key(ui::key::kReturn);
  EXPECT_EQ(focus_.current(), dir_);
  key(ui::key::kKeypadEnter);
  EXPECT_EQ(focus_.current(), inner_);
}

}  // namespace
}  // namespace app
