// What is taken out of a tree and put back.

#include <gtest/gtest.h>

#include <cstdint>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::expectSumsMatchRecount;
using test::Listing;
using test::SmallTree;

TEST(FileTreeTakenOut, SubtractsFromAncestorsAndSavesTheChildRange) {
  SmallTree small;
  const RemovedSubtree record = small.tree.removeSubtree(1);
  EXPECT_TRUE(record.valid);
  EXPECT_EQ(record.node, 1);
  EXPECT_EQ(record.firstChild, 3u);
  EXPECT_EQ(record.childCount, 2u);
  EXPECT_EQ(record.allocatedBytes, 1536u);
  EXPECT_TRUE(small.tree.isTakenOut(1));
  EXPECT_TRUE(small.tree.children(1).empty());
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 0u);
  EXPECT_EQ(small.tree.itemCount(kRootNode), 0);
  EXPECT_EQ(small.tree.kindTotals(classifyName("x.txt")), KindTotals{});
  EXPECT_EQ(small.tree.takenOutBytes(), 1536u);

  small.tree.restoreSubtree(record);
  EXPECT_EQ(small.tree.children(1).first, 3u);
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 30u);
  EXPECT_EQ(small.tree.takenOutBytes(), 0u);
  expectSumsMatchRecount(small.tree);
}

TEST(FileTreeTakenOut, LeavesExactlyTheRestWhereSumsHaveWrapped) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("sparse").file("small", 5));
  const std::uint64_t most = 0x7FFFFFFFFFFFFFFF;
  add(tree, Listing(folders[0]).file("1", most).file("2", most).file("3", most));
  EXPECT_EQ(tree.apparentSize(kRootNode), most + 3);  // 3 most + 5, less 2^64
  const RemovedSubtree record = tree.removeSubtree(folders[0]);
  EXPECT_EQ(tree.apparentSize(kRootNode), 5u);
  tree.restoreSubtree(record);
  EXPECT_EQ(tree.apparentSize(kRootNode), most + 3);
}

TEST(FileTreeTakenOut, PutsBackWhatTheWalkFoundInsideMeanwhile) {
  SmallTree small;
  const RemovedSubtree record = small.tree.removeSubtree(2);
  EXPECT_EQ(record.allocatedBytes, 0u);
  const auto inner = add(small.tree, Listing(2).file("late.txt", 100, 2048).folder("deeper"));
  add(small.tree, Listing(inner.front()).file("later.txt", 1000, 4096));
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 30u) << "nothing rolls up past a taken-out node";
  EXPECT_EQ(small.tree.apparentSize(2), 1100u);
  EXPECT_EQ(small.tree.totals().files, 2u);

  small.tree.restoreSubtree(record);
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 1130u);
  EXPECT_EQ(small.tree.children(2).size(), 2u);
  EXPECT_EQ(small.tree.totals().files, 4u);
  expectSumsMatchRecount(small.tree);
}

TEST(FileTreeTakenOut, IgnoresRecordsThatMeanNothing) {
  SmallTree small;
  small.tree.restoreSubtree({});
  small.tree.restoreSubtree({.node = 900, .allocatedBytes = 5, .valid = true});
  small.tree.restoreSubtree({.node = -1, .allocatedBytes = 5, .valid = true});
  small.tree.restoreSubtree({.node = 1, .firstChild = 3, .childCount = 2, .valid = true});
  RemovedSubtree undone = small.tree.removeSubtree(1);
  undone.valid = false;
  small.tree.restoreSubtree(undone);
  EXPECT_TRUE(small.tree.isTakenOut(1));
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 0u);
}

TEST(FileTreeTakenOut, RefusesTheRootAndWhatIsAlreadyOut) {
  SmallTree small;
  EXPECT_FALSE(small.tree.removeSubtree(kRootNode).valid);
  EXPECT_FALSE(small.tree.removeSubtree(900).valid);
  EXPECT_TRUE(small.tree.removeSubtree(1).valid);
  EXPECT_FALSE(small.tree.removeSubtree(1).valid);
  EXPECT_FALSE(small.tree.removeSubtree(3).valid) << "inside what is out";
}

TEST(FileTreeTakenOut, TakesHardLinksAndErrorsOutOfTheirTotals) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("a").folder("b").file("one", 9, 512, 0, 7));
  add(tree, Listing(folders[0]).file("two", 9, 512, 0, 7).unreadableEntry("broken").breaksOff());
  add(tree, Listing(folders[1]).unreadable());
  const ScanTotals before = tree.totals();
  EXPECT_EQ(before.hardLinks, 1u);
  EXPECT_EQ(before.errors, 3u);
  const RemovedSubtree record = tree.removeSubtree(folders[0]);
  EXPECT_EQ(tree.totals().hardLinks, 0u);
  EXPECT_EQ(tree.totals().hardLinkBytes, 0u);
  EXPECT_EQ(tree.totals().errors, 1u);
  tree.restoreSubtree(record);
  EXPECT_EQ(tree.totals(), before);
}

TEST(FileTreeTakenOut, IgnoresTheRecordOfAnEarlierTime) {
  SmallTree small;
  const RemovedSubtree unread = small.tree.removeSubtree(2);
  small.tree.restoreSubtree(unread);
  add(small.tree, Listing(2).file("late", 5, 512));
  const RemovedSubtree present = small.tree.removeSubtree(2);
  small.tree.restoreSubtree(unread);
  EXPECT_TRUE(small.tree.isTakenOut(2));
  EXPECT_EQ(small.tree.takenOutBytes(), 512u);
  small.tree.restoreSubtree(present);
  EXPECT_EQ(small.tree.children(2).size(), 1u);
  expectSumsMatchRecount(small.tree);
}

/// /r with folders a (1) and b (2); a file of two names, of which a's (3) was met first.
struct LinkedTree {
  LinkedTree() {
    tree.createRoot("/r");
    add(tree, Listing(0).folder("a").folder("b"));
    add(tree, Listing(1).file("counted", 9, 512, 0, 7));
  }
  FileTree tree;
};

TEST(FileTreeTakenOut, CountsAFileAtAnotherNameThatTurnsUpWhileItsFirstIsOut) {
  LinkedTree linked;
  const RemovedSubtree record = linked.tree.removeSubtree(1);
  add(linked.tree, Listing(2).file("second", 9, 512, 0, 7));
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 512u);
  EXPECT_EQ(linked.tree.totals().hardLinks, 0u);

  linked.tree.restoreSubtree(record);
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 512u) << "still one file";
  EXPECT_TRUE(linked.tree.flags(3).has(NodeFlag::HardLinkDuplicate));
  EXPECT_EQ(linked.tree.allocatedSize(1), 0u);
  EXPECT_EQ(linked.tree.totals().hardLinks, 1u);
  EXPECT_EQ(linked.tree.totals().hardLinkBytes, 512u);
  EXPECT_EQ(linked.tree.totals().files, 1u);
  expectSumsMatchRecount(linked.tree);
}

TEST(FileTreeTakenOut, CountsAFileAtItsFirstNameAgainWhenTheOtherIsOutByThen) {
  LinkedTree linked;
  const RemovedSubtree first = linked.tree.removeSubtree(1);
  add(linked.tree, Listing(2).file("second", 9, 512, 0, 7));
  const RemovedSubtree second = linked.tree.removeSubtree(2);
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 0u);
  linked.tree.restoreSubtree(first);
  EXPECT_EQ(linked.tree.allocatedSize(1), 512u);
  linked.tree.restoreSubtree(second);
  EXPECT_EQ(linked.tree.allocatedSize(2), 0u);
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 512u);
  expectSumsMatchRecount(linked.tree);
}

TEST(FileTreeTakenOut, RemembersADisplacedNameWhenTheOtherIsReadAnew) {
  LinkedTree linked;
  const RemovedSubtree first = linked.tree.removeSubtree(1);
  add(linked.tree, Listing(2).file("second", 9, 512, 0, 7));
  ASSERT_TRUE(linked.tree.dropContents(2));
  linked.tree.restoreSubtree(first);
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 512u);
  add(linked.tree, Listing(2).file("second", 9, 512, 0, 7));
  EXPECT_EQ(linked.tree.allocatedSize(kRootNode), 512u);
  EXPECT_EQ(linked.tree.totals().hardLinks, 1u);
  expectSumsMatchRecount(linked.tree);
}

TEST(FileTreeTakenOut, CountsMountPointsNotAmongTheDirectories) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId folder = add(tree, Listing(0).folder("a")).front();
  add(tree, Listing(folder).mountPoint("mounted").folder("plain"));
  EXPECT_EQ(tree.totals().directories, 2u);
  const RemovedSubtree record = tree.removeSubtree(folder);
  EXPECT_EQ(tree.totals().directories, 0u);
  tree.restoreSubtree(record);
  EXPECT_EQ(tree.totals().directories, 2u);
  EXPECT_FALSE(tree.removeSubtree(kRootNode).valid);
}

}  // namespace
}  // namespace sizewalk
