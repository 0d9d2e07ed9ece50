#include "app/model/map_focus.h"

#include <gtest/gtest.h>

#include "app/model/tree_way.h"
#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

/// /r holds a/ with b/ with c/ with a file, and empty/.
class MapFocusTest : public ::testing::Test {
 protected:
  MapFocusTest() {
    tree.createRoot("/r");
    const auto folders = add(tree, Listing(0).folder("a").folder("empty"));
    a = folders[0];
    empty = folders[1];
    b = add(tree, Listing(a).folder("b")).front();
    c = add(tree, Listing(b).folder("c")).front();
    add(tree, Listing(c).file("file", 5));
    file = tree.firstChild(c);
    focus.reset(&tree);
    focus.onChanged = [this] { ++changes; };
  }

  sizewalk::FileTree tree;
  NodeId a = 0, b = 0, c = 0, empty = 0, file = 0;
  MapFocus focus;
  int changes = 0;
};

TEST_F(MapFocusTest, TakesUpAWayWithItsHistory) {
  focus.go(b);
  focus.go(c);
  focus.goToPrevious();
  const MapFocus::Way way = focus.way();
  focus.reset(&tree);
  changes = 0;
  focus.takeUp(way);
  EXPECT_EQ(focus.current(), b);
  EXPECT_EQ(changes, 1);
  focus.takeUp(way);
  EXPECT_EQ(changes, 1) << "it is there already";
  focus.goToNext();
  EXPECT_EQ(focus.current(), c);
  focus.goToPrevious();
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), kRootNode);
}

TEST_F(MapFocusTest, TakesUpTheNearestFolderThatCanBeFocused) {
  focus.takeUp({.current = empty, .innermost = empty, .previous = {}, .next = {}});
  EXPECT_EQ(focus.current(), kRootNode) << "there is nothing in it";
  focus.takeUp({.current = file, .innermost = file, .previous = {}, .next = {}});
  EXPECT_EQ(focus.current(), c);
}

TEST_F(MapFocusTest, BeginsAtTheScannedFolder) {
  EXPECT_EQ(focus.current(), kRootNode);
  EXPECT_FALSE(focus.canGoOut());
  focus.goOut();
  focus.goBackIn();
  focus.goToPrevious();
  focus.goToNext();
  EXPECT_EQ(focus.current(), kRootNode);
  EXPECT_EQ(changes, 0);
}

TEST_F(MapFocusTest, GoesOneLevelTowardsAnItem) {
  focus.goTowards(file);
  EXPECT_EQ(focus.current(), a);
  focus.goTowards(file);
  focus.goTowards(file);
  EXPECT_EQ(focus.current(), c);
  focus.goTowards(file);
  EXPECT_EQ(focus.current(), c) << "a file is no folder";
  EXPECT_EQ(changes, 3);
}

TEST_F(MapFocusTest, StaysWhereTheItemIsNotInside) {
  focus.go(c);
  focus.goTowards(empty);
  focus.goTowards(kRootNode);
  EXPECT_EQ(focus.current(), c);
}

TEST_F(MapFocusTest, TakesFoldersAlone) {
  focus.go(file);
  focus.go(tree.nodeCount());
  EXPECT_EQ(focus.current(), kRootNode);
  focus.go(empty);
  EXPECT_EQ(focus.current(), empty) << "with nothing in it";
  EXPECT_TRUE(focus.canGoOut());
}

TEST_F(MapFocusTest, GoesOutAndBackInAlongTheSameWay) {
  focus.go(c);
  focus.goOut();
  EXPECT_EQ(focus.current(), b);
  focus.goOut();
  focus.goOut();
  EXPECT_EQ(focus.current(), kRootNode);
  focus.goBackIn();
  EXPECT_EQ(focus.current(), a);
  focus.goBackIn();
  focus.goBackIn();
  EXPECT_EQ(focus.current(), c);
  focus.goBackIn();
  EXPECT_EQ(focus.current(), c);
}

TEST_F(MapFocusTest, GoesThroughItsHistory) {
  focus.go(a);
  focus.go(c);
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), a);
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), kRootNode);
  focus.goToNext();
  focus.goToNext();
  EXPECT_EQ(focus.current(), c);
  focus.goToPrevious();
  focus.go(b);
  focus.goToNext();
  EXPECT_EQ(focus.current(), b) << "another way ends what came next";
}

TEST_F(MapFocusTest, PassesOverWhatWasTakenOut) {
  focus.go(a);
  focus.go(c);
  focus.go(b);
  tree.removeSubtree(c);
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), a);
  focus.go(c);
  EXPECT_EQ(focus.current(), a);
}

TEST_F(MapFocusTest, PassesOverWhatLiesInsideSomethingTakenOut) {
  focus.go(c);
  focus.go(kRootNode);
  changes = 0;
  const auto record = tree.removeSubtree(a);
  focus.go(c);
  focus.goTowards(c);
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), kRootNode);
  EXPECT_EQ(changes, 0) << "what is left of the way is the folder it began at";
  tree.restoreSubtree(record);
  focus.go(c);
  EXPECT_EQ(focus.current(), c);
}

TEST_F(MapFocusTest, PassesOverWhatWasDropped) {
  focus.go(a);
  focus.go(c);
  focus.go(b);
  ASSERT_TRUE(tree.dropContents(a));
  add(tree, Listing(a).folder("b"));
  ASSERT_FALSE(tree.children(c).empty()) << "by itself it looks as before";
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), a);
}

TEST_F(MapFocusTest, GoesOutPastWhatIsNotToBeSeenAnyMore) {
  focus.go(c);
  tree.removeSubtree(b);
  focus.goOut();
  EXPECT_EQ(focus.current(), a);
  focus.goOut();
  EXPECT_EQ(focus.current(), kRootNode);
}

TEST_F(MapFocusTest, LeavesAFolderThatIsNotVisibleAnyMoreWhenToldTo) {
  focus.go(c);
  focus.keepVisible();
  EXPECT_EQ(focus.current(), c);
  const auto record = tree.removeSubtree(b);
  focus.keepVisible();
  EXPECT_EQ(focus.current(), a);
  changes = 0;
  focus.keepVisible();
  EXPECT_EQ(changes, 0);
  tree.restoreSubtree(record);
  focus.goToPrevious();
  EXPECT_EQ(focus.current(), c);
  focus.reset(nullptr);
  focus.keepVisible();
  EXPECT_EQ(focus.current(), kRootNode);
}

TEST_F(MapFocusTest, ForgetsItsWayWithTheScan) {
  focus.go(c);
  focus.reset(&tree);
  focus.goToPrevious();
  focus.goBackIn();
  EXPECT_EQ(focus.current(), kRootNode);
  focus.reset(nullptr);
  focus.go(a);
  focus.goTowards(a);
  focus.goOut();
  EXPECT_EQ(focus.current(), kRootNode);
}

TEST_F(MapFocusTest, FocusesAScannedFolderInWhichNothingWasFound) {
  sizewalk::FileTree bare;
  bare.createRoot("/bare");
  focus.reset(&bare);
  focus.go(kRootNode);
  EXPECT_EQ(focus.current(), kRootNode);
}

TEST_F(MapFocusTest, TheWayToAnItemLeadsThroughOneEntryOfEachFolder) {
  EXPECT_EQ(childTowards(tree, kRootNode, file), a);
  EXPECT_EQ(childTowards(tree, b, file), c);
  EXPECT_EQ(childTowards(tree, c, file), file);
  EXPECT_EQ(childTowards(tree, empty, file), std::nullopt);
  EXPECT_EQ(childTowards(tree, c, c), std::nullopt);
}

}  // namespace
}  // namespace app
