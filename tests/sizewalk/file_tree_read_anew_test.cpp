// A folder whose contents are dropped, to be read anew.

#include <gtest/gtest.h>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::expectSumsMatchRecount;
using test::Listing;
using test::SmallTree;

TEST(FileTreeReadAnew, DropsTheOldContentsFromEveryTotal) {
  SmallTree small;
  ASSERT_TRUE(small.tree.dropContents(1));
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 0u);
  EXPECT_TRUE(small.tree.children(1).empty());
  EXPECT_EQ(small.tree.totals().files, 0u);
  EXPECT_EQ(small.tree.totals().directories, 2u) << "the folders themselves stay";
  add(small.tree, Listing(1).file("new.txt", 5, 512));
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 5u);
  expectSumsMatchRecount(small.tree);
}

TEST(FileTreeReadAnew, CountsAHardLinkAgainWhereItTurnsUpNext) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("a").folder("b"));
  add(tree, Listing(folders[0]).file("counted", 9, 512, 0, 7));
  add(tree, Listing(folders[1]).file("duplicate", 9, 512, 0, 7));
  ASSERT_EQ(tree.totals().hardLinks, 1u);

  ASSERT_TRUE(tree.dropContents(folders[0]));
  add(tree, Listing(folders[0]).file("again", 9, 512, 0, 7));
  const NodeId again = tree.children(folders[0]).first;
  EXPECT_EQ(tree.allocatedSize(again), 512u);
  EXPECT_FALSE(tree.flags(again).has(NodeFlag::HardLinkDuplicate));

  ASSERT_TRUE(tree.dropContents(folders[1]));
  EXPECT_EQ(tree.totals().hardLinks, 0u);
  EXPECT_EQ(tree.totals().hardLinkBytes, 0u);
  add(tree, Listing(folders[1]).file("stillDuplicate", 9, 512, 0, 7));
  EXPECT_EQ(tree.totals().hardLinks, 1u);
  expectSumsMatchRecount(tree);
}

TEST(FileTreeReadAnew, VoidsRecordsOfWhatLayInside) {
  SmallTree small;
  const RemovedSubtree record = small.tree.removeSubtree(3);
  ASSERT_TRUE(small.tree.dropContents(1));
  EXPECT_EQ(small.tree.takenOutBytes(), 0u);
  small.tree.restoreSubtree(record);
  EXPECT_EQ(small.tree.apparentSize(kRootNode), 0u);
  EXPECT_FALSE(small.tree.removeSubtree(4).valid) << "what was dropped cannot be taken out";
}

TEST(FileTreeReadAnew, ForgetsOldErrorsOfTheFolder) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId locked = add(tree, Listing(0).folder("locked")).front();
  add(tree, Listing(locked).unreadable());
  ASSERT_TRUE(tree.dropContents(locked));
  EXPECT_FALSE(tree.flags(locked).has(NodeFlag::Unreadable));
  EXPECT_EQ(tree.totals().errors, 0u);
}

TEST(FileTreeReadAnew, RefusesWhatIsNotAVisibleDirectory) {
  SmallTree small;
  EXPECT_FALSE(small.tree.dropContents(3));
  EXPECT_FALSE(small.tree.dropContents(900));
  const RemovedSubtree record = small.tree.removeSubtree(1);
  ASSERT_TRUE(record.valid);
  EXPECT_FALSE(small.tree.dropContents(1));
}

}  // namespace
}  // namespace sizewalk
