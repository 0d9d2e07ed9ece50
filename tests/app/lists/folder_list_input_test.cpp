// The folder list under the pointer and the keys.

#include "app/lists/folder_list.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tests/app/lists/folder_list_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

// The pointer.

TEST_F(FolderListTest, SelectsTheRowThatIsPressed) {
  press(2);
  EXPECT_EQ(selected(), Nodes{small_});
  EXPECT_EQ(list_.current(), small_);
  EXPECT_GT(changes_, 0);
  press(1);
  EXPECT_EQ(selected(), Nodes{big_});
  list_.press({.x = 150, .y = 10 + 5 * h_, .button = 1});
  list_.press({.x = 280, .y = 20, .button = 1});
  press(0, {.button = 2});
  EXPECT_EQ(selected(), Nodes{big_}) << "nothing was hit";
}

TEST_F(FolderListTest, TogglesWithCtrlAndRangesWithShift) {
  press(1);
  press(3, {.button = 1, .ctrl = true});
  EXPECT_EQ(selected(), (Nodes{big_, other_}));
  press(3, {.button = 1, .ctrl = true});
  EXPECT_EQ(selected(), Nodes{big_});
  press(1, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_})) << "from the row that was toggled";
  press(4, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{other_, empty_})) << "from the same";
}

TEST_F(FolderListTest, RangesFromTheNodeWhereverItsRowIsByNow) {
  press(4);
  fillEmpty(10, 1000);
  list_.refresh();
  ASSERT_EQ(names(), "r empty big small.txt Other ");
  press(2, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{empty_, big_}));
}

TEST_F(FolderListTest, OpensAndClosesByItsTriangleAndDoesNothingElse) {
  press(1, {.button = 1}, 46);
  EXPECT_EQ(names(), "r big inner file small.txt Other empty ");
  EXPECT_TRUE(selected().empty());
  EXPECT_EQ(list_.current(), kRootNode);
  press(1, {.button = 1, .clicks = 2}, 46);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  EXPECT_TRUE(activated_.empty());
  press(2, {.button = 1}, 46);
  EXPECT_EQ(selected(), Nodes{small_}) << "where there is no triangle";
}

TEST_F(FolderListTest, KeepsWhatIsSelectedInsideAClosedFolder) {
  list_.revealNode(deep_);
  selection_.select(deep_);
  press(1, {.button = 1}, 46);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  EXPECT_EQ(selected(), Nodes{deep_});
  EXPECT_EQ(list_.current(), big_) << "the row that closed over it";
}

TEST_F(FolderListTest, ActivatesOnADoublePress) {
  press(1);
  press(1, {.button = 1, .clicks = 2});
  EXPECT_EQ(activated_, std::vector<NodeId>{big_});
  press(1, {.button = 1, .clicks = 3});
  EXPECT_EQ(activated_.size(), 1u);
}

TEST_F(FolderListTest, CountsNoPressOnTheListBeforeAsTheFirstOfTwo) {
  press(1);
  list_.show(&tree_);
  press(1, {.button = 1, .clicks = 2});
  EXPECT_TRUE(activated_.empty());
}

TEST_F(FolderListTest, TakesNoPressOnAnotherRowOrButtonForADoubleOne) {
  press(1);
  press(2, {.button = 1, .clicks = 2});
  press(3, {.button = 3});
  press(3, {.button = 1, .clicks = 2});
  press(3);
  press(3, {.button = 1, .clicks = 2, .ctrl = true});
  EXPECT_TRUE(activated_.empty());
}

TEST_F(FolderListTest, SelectsBeforeTheContextMenu) {
  press(2, {.button = 3});
  EXPECT_EQ(selected(), Nodes{small_});
  ASSERT_EQ(menus_.size(), 1u);
  EXPECT_EQ(menus_[0].node, small_);
  EXPECT_EQ(menus_[0].x, 150);
  EXPECT_EQ(menus_[0].y, 10 + 2 * h_ + mid_);
}

TEST_F(FolderListTest, KeepsASelectionThatTheContextMenuIsAskedOn) {
  press(1);
  press(3, {.button = 1, .shift = true});
  press(2, {.button = 3});
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_}));
  EXPECT_EQ(list_.current(), small_);
}

TEST_F(FolderListTest, ScrollsThreeRowsAStepOfTheWheel) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first);
  list_.prepare();
  const int before = list_.scrollOffset();
  list_.wheel({}, 1);
  EXPECT_EQ(list_.scrollOffset(), before + 3 * h_);
  list_.wheel({}, -2);
  EXPECT_EQ(list_.scrollOffset(), std::max(0, before + 3 * h_ - 6 * h_));
}

TEST_F(FolderListTest, DragsAndPagesByItsBar) {
  fillEmpty(100);
  list_.revealNode(tree_.children(empty_).first);
  list_.scrollToRow(0);
  list_.prepare();
  ASSERT_EQ(list_.scrollOffset(), 0);
  list_.press({.x = 255, .y = 10 + 5 * h_ - 1, .button = 1});
  list_.release({.button = 1});
  EXPECT_EQ(list_.scrollOffset(), 5 * h_) << "a view further";
  list_.press({.x = 255, .y = 15, .button = 1});
  list_.motion({.x = 30, .y = 60});
  EXPECT_GT(list_.scrollOffset(), 500);
  EXPECT_NE(painted().at(20, 60), 0xF5F5F5u) << "no row is under the pointer meanwhile";
  list_.release({.button = 1});
  const int offset = list_.scrollOffset();
  list_.motion({.x = 30, .y = 80});
  EXPECT_EQ(list_.scrollOffset(), offset);
  EXPECT_TRUE(selected().empty()) << "no row was pressed";
}

// Keys.

TEST_F(FolderListTest, MovesByKeys) {
  EXPECT_TRUE(key(ui::key::kDown));
  EXPECT_EQ(selected(), Nodes{big_});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{small_});
  key(ui::key::kKeypadUp);
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kEnd);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kPageUp);
  EXPECT_EQ(selected(), Nodes{kRootNode}) << "four rows";
  key(ui::key::kUp);
  EXPECT_EQ(selected(), Nodes{kRootNode});
  key(ui::key::kPageDown);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kHome);
  EXPECT_EQ(selected(), Nodes{kRootNode});
}

TEST_F(FolderListTest, ScrollsToTheRowThatAKeyMovesTo) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first);
  key(ui::key::kEnd);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 55 * h_ - 5 * h_);
  key(ui::key::kHome);
  list_.prepare();
  EXPECT_EQ(list_.scrollOffset(), 0);
}

/// The current row is big, and far above what is in view.
class FarFolderListTest : public FolderListTest {
 protected:
  FarFolderListTest() {
    fillEmpty(50);
    list_.revealNode(tree_.children(empty_).first);
    list_.revealNode(big_);
    list_.prepare();
    list_.wheel({}, 5);
  }
  bool inView() const {
    const ui::Rect row = list_.rowRect(list_.rows().find(big_).value());
    return row.y >= place_.y && row.y + row.h <= place_.y + place_.h;
  }
};

TEST_F(FarFolderListTest, ScrollsToTheRowThatAKeyOpensOrCloses) {
  ASSERT_FALSE(inView());
  key(ui::key::kRight);
  list_.prepare();
  EXPECT_TRUE(inView());
  list_.wheel({}, 5);
  ASSERT_FALSE(inView());
  key(ui::key::kLeft);
  list_.prepare();
  EXPECT_TRUE(inView());
}

TEST_F(FarFolderListTest, ScrollsToTheRowThatAKeyAsksTheContextMenuOf) {
  ASSERT_FALSE(inView());
  key(ui::key::kMenu);
  EXPECT_TRUE(inView());
  ASSERT_EQ(menus_.size(), 1u);
  EXPECT_TRUE(place_.contains(menus_[0].x, menus_[0].y - 1));
}

TEST_F(FolderListTest, ExtendsTheSelectionWithShift) {
  press(2);
  key(ui::key::kDown, true);
  EXPECT_EQ(selected(), (Nodes{small_, other_}));
  EXPECT_EQ(list_.current(), other_);
  key(ui::key::kHome, true);
  EXPECT_EQ(selected(), (Nodes{kRootNode, big_, small_}));
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{big_}) << "without Shift it is one again";
}

TEST_F(FolderListTest, ExtendsFromTheCurrentRowWhereNothingWasSelected) {
  key(ui::key::kDown, true);
  EXPECT_EQ(selected(), (Nodes{kRootNode, big_}));
}

TEST_F(FolderListTest, OpensGoesInClosesAndGoesOutByRightAndLeft) {
  press(1);
  EXPECT_TRUE(key(ui::key::kRight));
  EXPECT_EQ(names(), "r big inner file small.txt Other empty ");
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kRight);
  EXPECT_EQ(list_.current(), inner_);
  EXPECT_EQ(selected(), Nodes{inner_});
  key(ui::key::kDown);
  EXPECT_TRUE(key(ui::key::kRight)) << "a file has nothing to go to";
  key(ui::key::kLeft);
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kLeft);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  key(ui::key::kLeft);
  EXPECT_EQ(list_.current(), kRootNode);
  key(ui::key::kLeft);
  key(ui::key::kLeft);
  EXPECT_EQ(names(), "r ");
}

TEST_F(FolderListTest, GoesToTheNextNameThatIsTyped) {
  EXPECT_TRUE(type("O"));
  EXPECT_EQ(selected(), Nodes{other_});
  now_ += 1000;
  type("s");
  EXPECT_EQ(list_.current(), small_);
  type("M");
  EXPECT_EQ(list_.current(), small_) << "what was typed goes on to fit";
  now_ += 1000;
  type("B");
  EXPECT_EQ(list_.current(), big_) << "round the end";
  type("x");
  EXPECT_EQ(list_.current(), big_) << "nothing begins so";
}

TEST_F(FolderListTest, TakesBackWhatWasTypedByBackspace) {
  EXPECT_FALSE(key(ui::key::kBackSpace)) << "which leads out of the folder";
  type("s");
  type("x");
  EXPECT_TRUE(key(ui::key::kBackSpace));
  EXPECT_EQ(list_.current(), small_);
  now_ += 1000;
  EXPECT_FALSE(key(ui::key::kBackSpace));
}

TEST_F(FolderListTest, AsksForAFrameWhenWhatIsTypedIsAnother) {
  const auto changedBy = [&](const auto& act) {
    changes_ = 0;
    act();
    return changes_ > 0;
  };
  EXPECT_TRUE(changedBy([&] { type("q"); })) << "which no name begins with";
  EXPECT_EQ(list_.typed(), "q");
  EXPECT_FALSE(changedBy([&] { list_.tick(now_ + 999); }));
  EXPECT_TRUE(changedBy([&] { list_.tick(now_ + 1000); }));
  EXPECT_EQ(list_.typed(), "");
  type("q");
  EXPECT_TRUE(changedBy([&] { list_.press({.x = place_.x, .y = place_.y, .button = 2}); }));
  EXPECT_EQ(list_.typed(), "");
  EXPECT_FALSE(changedBy([&] { list_.press({.x = place_.x, .y = place_.y, .button = 2}); }));
}

TEST_F(FolderListTest, BeginsAnotherSearchAfterAnotherKey) {
  type("s");
  key(ui::key::kHome);
  type("e");
  EXPECT_EQ(list_.current(), empty_);
}

TEST_F(FolderListTest, KeepsASearchOverKeysThatMeanNothing) {
  add(tree_, Listing(empty_).file("s-", 1).file("sT", 1));
  list_.refresh();
  list_.revealNode(empty_);
  key(ui::key::kRight);
  type("s");
  key(0xFFE1);  // Shift itself
  type("T");
  EXPECT_EQ(tree_.name(*list_.current()), "sT");
}

TEST_F(FolderListTest, ActivatesTheCurrentRowByEnter) {
  press(2);
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_TRUE(key(ui::key::kKeypadEnter));
  EXPECT_EQ(activated_, (std::vector<NodeId>{small_, small_}));
}

TEST_F(FolderListTest, SelectsAllOfALevel) {
  press(1);
  key(ui::key::kRight);
  press(4);
  EXPECT_TRUE(key('a', false, true));
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_, empty_})) << "not what big holds";
  press(2);
  key('A', false, true);
  EXPECT_EQ(selected(), (Nodes{inner_, tree_.children(big_).first}));
  press(0);
  key('a', false, true);
  EXPECT_EQ(selected(), Nodes{kRootNode});
}

TEST_F(FolderListTest, AsksForTheContextMenuAtTheCurrentRow) {
  press(2);
  EXPECT_TRUE(key(ui::key::kMenu));
  EXPECT_TRUE(key(ui::key::kF10, true));
  ASSERT_EQ(menus_.size(), 2u);
  EXPECT_EQ(menus_[1].node, small_);
  EXPECT_EQ(menus_[1].x, 68);
  EXPECT_EQ(menus_[1].y, 10 + 3 * h_);
  selection_.clear();
  key(ui::key::kMenu);
  EXPECT_EQ(selected(), Nodes{small_});
}

TEST_F(FolderListTest, LeavesOtherKeysToItsOwner) {
  press(1);
  EXPECT_FALSE(key(ui::key::kHome, false, true));
  EXPECT_FALSE(key(ui::key::kUp, false, true));
  EXPECT_FALSE(key(ui::key::kF10));
  EXPECT_FALSE(key(ui::key::kTab));
  EXPECT_FALSE(key(ui::key::kEscape));
  EXPECT_FALSE(key(ui::key::kDelete));
  EXPECT_FALSE(list_.key({.keysym = 'r', .text = {}, .ctrl = true, .timeMs = now_, .typed = "r"}));
  EXPECT_FALSE(list_.key({.keysym = ' ', .text = {}, .timeMs = now_, .typed = " "}));
  EXPECT_EQ(selected(), Nodes{big_});
}

TEST_F(FolderListTest, TakesNoKeysWithoutRows) {
  list_.show(nullptr);
  EXPECT_FALSE(key(ui::key::kDown));
  EXPECT_FALSE(key('a', false, true));
  EXPECT_FALSE(list_.current());
  list_.press({.x = 100, .y = 20, .button = 1});
  list_.motion({.x = 100, .y = 20});
  list_.refresh();
  EXPECT_TRUE(selected().empty());
}

}  // namespace
}  // namespace app
