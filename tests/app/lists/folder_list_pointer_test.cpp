// What the folder list does with the row under the pointer while results arrive.

#include <string>
#include <vector>

#include "app/lists/folder_list.h"
#include "tests/app/lists/folder_list_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

/// All rows fit: r, big, small.txt, Other, empty. The last will become the largest.
class FolderListPointerTest : public ::testing::Test, protected ListOnServer {
 protected:
  void growEmpty() {
    fillEmpty(1, 1000);
    list_.refresh();
  }
  /// The pointer is on small.txt, and so the new order waits.
  void growUnderThePointer() {
    moveOnto(2);
    growEmpty();
    EXPECT_EQ(names(), kBefore);
  }
  static constexpr char kBefore[] = "r big small.txt Other empty ";
  static constexpr char kAfter[] = "r empty big small.txt Other ";
};

TEST_F(FolderListPointerTest, HasTheOrderWaitWhileThePointerIsOnARowOfAListThatCannotScroll) {
  growUnderThePointer();
  EXPECT_EQ(list_.hovered(), small_);
  list_.leave();
  list_.prepare();
  EXPECT_EQ(names(), kAfter) << "the pointer has moved on";
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWhenThePointerMovesToARowThatStaysInItsPlace) {
  growUnderThePointer();
  moveOnto(0);
  list_.prepare();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, AsksForAFrameWhenTheOrderWaitsNoMore) {
  growUnderThePointer();
  changes_ = 0;
  list_.motion({.x = 101, .y = rowY(2)});
  EXPECT_EQ(changes_, 0);
  list_.leave();
  EXPECT_GT(changes_, 0);
}

TEST_F(FolderListPointerTest, SelectsWithTheNextPressWhatWasUnderThePointer) {
  growUnderThePointer();
  press(2, {.button = 1}, 100);
  EXPECT_EQ(selected(), Nodes{small_});
}

TEST_F(FolderListPointerTest, StaysAtItsTopUnderAPointerThatHasNotMoved) {
  list_.motion({.x = 100, .y = rowY(2)});  // where it was when the list was shown
  growEmpty();
  EXPECT_EQ(names(), kAfter);
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(FolderListPointerTest, DoesNotScrollAwayFromItsTopUnderAPointerThatHasNotMoved) {
  list_.motion({.x = 100, .y = rowY(4)});
  sizewalk::FileTree large;
  large.createRoot("/large");
  Listing listing(0);
  for (int i = 0; i < 20; ++i) listing.folder("f" + std::to_string(100 + i));
  const auto folders = add(large, listing);
  list_.show(&large);
  list_.motion({.x = 100, .y = rowY(4)});
  for (int i = 0; i < 20; ++i) {
    add(large, Listing(folders[19 - static_cast<std::size_t>(i)])
                   .file("x", static_cast<std::uint64_t>(1000 - i)));
    list_.refresh();
    list_.motion({.x = 100, .y = rowY(4) + list_.scrollOffset()});
  }
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.rows().rows()[1].node, folders[19]) << "the largest at the top";
}

TEST_F(FolderListPointerTest, KnowsThatThePointerCameFromElsewhere) {
  list_.pointerSeen(5, 5);
  list_.motion({.x = 100, .y = rowY(2)});
  growEmpty();
  EXPECT_EQ(names(), kBefore);
}

TEST_F(FolderListPointerTest, KeepsTheOrderWhileSomethingCoversTheList) {
  moveOnto(2);
  list_.cover();
  list_.leave();
  growEmpty();
  EXPECT_EQ(names(), kBefore);
  list_.pointerSeen(100, rowY(2));
  list_.motion({.x = 100, .y = rowY(2)});
  list_.prepare();
  EXPECT_EQ(names(), kBefore) << "the pointer is where it was";
  list_.cover();
  list_.leave();
  list_.pointerSeen(5, 5);
  list_.prepare();
  EXPECT_EQ(names(), kAfter) << "it was moved away meanwhile";
}

TEST_F(FolderListPointerTest, LetsGoOfAnOrderInWhichSomethingHasVanished) {
  growUnderThePointer();
  ASSERT_TRUE(tree_.removeSubtree(other_).valid);
  list_.refresh();
  EXPECT_EQ(names(), "r empty big small.txt ");
}

TEST_F(FolderListPointerTest, OpensAFolderThatWasFilledWhileTheOrderWaits) {
  growUnderThePointer();
  ASSERT_TRUE(list_.rows().rows()[4].expandable);
  press(4, {.button = 1}, 20 + 6 + 16 + 4);
  EXPECT_EQ(names(), std::string(kBefore) + "f1000 ");
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWhenThePointerMovesToARowThatCannotStayInItsPlace) {
  growUnderThePointer();
  moveOnto(3);
  list_.prepare();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWithTheNextRefreshOnceThePointerHasMovedOn) {
  growUnderThePointer();
  moveOnto(3);
  list_.refresh();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, HasTheNextOrderWaitForTheRowThatThePointerMovedTo) {
  growUnderThePointer();
  moveOnto(3);
  list_.prepare();
  ASSERT_EQ(names(), kAfter);
  ASSERT_EQ(list_.hovered(), small_);
  ASSERT_TRUE(tree_.dropContents(empty_));
  list_.refresh();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWithTheWheelThoughNothingCanScroll) {
  growUnderThePointer();
  changes_ = 0;
  list_.wheel({.x = 100, .y = rowY(2)}, 1);
  EXPECT_GT(changes_, 0);
  list_.prepare();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, BringsTheOrderUpAfterAKeyThatActsOnTheRowsAsTheyAreSeen) {
  press(2);
  growUnderThePointer();
  key(ui::key::kUp);
  EXPECT_EQ(list_.current(), big_);
  list_.prepare();
  EXPECT_EQ(names(), kAfter);
  EXPECT_EQ(list_.current(), big_);
}

TEST_F(FolderListPointerTest, HasTheOrderWaitAfterAKeyThatItDoesNotKnow) {
  growUnderThePointer();
  ASSERT_FALSE(key(ui::key::kEscape));
  list_.prepare();
  EXPECT_EQ(names(), kBefore);
}

TEST_F(FolderListPointerTest, LeavesTheRowWhereItIsUnderAContextMenuOfTheKeyboard) {
  growUnderThePointer();
  list_.onContextMenu = [this](NodeId, int, int, Command::By) {
    list_.cover();
    list_.leave();
  };
  ASSERT_TRUE(key(ui::key::kMenu));
  list_.prepare();
  EXPECT_EQ(names(), kBefore);
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWhenARowIsRevealed) {
  growUnderThePointer();
  list_.revealNode(big_);
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, HasTheOrderWaitBetweenTheTwoPressesOfADoubleOne) {
  growUnderThePointer();
  press(2, {.button = 1}, 100);
  list_.prepare();
  press(2, {.button = 1, .clicks = 2}, 100);
  EXPECT_EQ(activated_, std::vector{small_});
}

TEST_F(FolderListPointerTest, BringsTheOrderUpWithAPressElsewhere) {
  growUnderThePointer();
  press(3, {.button = 1}, 100);
  EXPECT_EQ(selected(), Nodes{other_});
  list_.prepare();
  EXPECT_EQ(names(), kAfter);
}

// Rows that come and go.

TEST_F(FolderListPointerTest, ShowsWhatIsPutBackAtOnceThoughTheOrderChanges) {
  auto taken = tree_.removeSubtree(other_);
  ASSERT_TRUE(taken.valid);
  list_.refresh();
  moveOnto(2);
  growEmpty();
  ASSERT_EQ(names(), "r big small.txt empty ");
  tree_.restoreSubtree(taken);
  list_.refresh();
  EXPECT_EQ(names(), kAfter);
}

TEST_F(FolderListPointerTest, ShowsWhatAFolderThatWasReadAgainHolds) {
  fillEmpty(1, 1);
  list_.refresh();
  press(4, {.button = 1}, 20 + 6 + 16 + 4);
  ASSERT_TRUE(tree_.dropContents(empty_));
  list_.refresh();
  moveOnto(2);
  add(tree_, Listing(empty_).file("read", 1000));
  list_.refresh();
  EXPECT_EQ(names(), "r empty read big small.txt Other ");
}

TEST_F(FolderListPointerTest, HasNewRowsWaitOnlyWhileTheTreeGrows) {
  fillEmpty(1, 1);
  list_.refresh();
  press(4, {.button = 1}, 20 + 6 + 16 + 4);
  ASSERT_TRUE(tree_.dropContents(empty_));
  list_.refresh();
  moveOnto(2);
  list_.setGrowing(true);
  add(tree_, Listing(empty_).file("read", 1000));
  list_.refresh();
  EXPECT_EQ(names(), kBefore);
  list_.setGrowing(false);
  list_.refresh();
  EXPECT_EQ(names(), "r empty read big small.txt Other ");
}

TEST_F(FolderListPointerTest, TakesKeysWhenTheCurrentRowIsNotShownYet) {
  list_.setGrowing(true);
  list_.beginReturn();
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  moveOnto(2);
  fillEmpty(1, 1000);
  const NodeId inside = tree_.children(empty_).first;
  list_.returnTo({.open = {kRootNode, empty_}, .current = inside, .top = {}, .topAt = 0});
  list_.refresh();
  ASSERT_EQ(names(), kBefore) << "the new rows wait";
  ASSERT_EQ(list_.current(), inside);
  EXPECT_TRUE(key(ui::key::kUp));
  EXPECT_EQ(list_.current(), empty_);
}

}  // namespace
}  // namespace app
