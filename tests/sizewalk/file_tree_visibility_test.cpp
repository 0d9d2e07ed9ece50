// What of a tree is to be seen.

#include <gtest/gtest.h>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::Listing;
using test::SmallTree;

TEST(FileTreeVisibility, BeginsWithPublication) {
  FileTree tree;
  EXPECT_FALSE(tree.isVisible(kRootNode));
  tree.createRoot("/r");
  EXPECT_TRUE(tree.isVisible(kRootNode));
  EXPECT_FALSE(tree.isVisible(1));
  add(tree, Listing(0).folder("a"));
  EXPECT_TRUE(tree.isVisible(1));
  EXPECT_FALSE(tree.isVisible(2));
  EXPECT_FALSE(tree.isVisible(0xFFFFFFFF));
}

TEST(FileTreeVisibility, EndsForAllThatLiesInWhatIsTakenOutAndComesBackWithIt) {
  SmallTree small;
  const RemovedSubtree record = small.tree.removeSubtree(1);
  for (const NodeId node : {1u, 3u, 4u}) EXPECT_FALSE(small.tree.isVisible(node)) << node;
  EXPECT_TRUE(small.tree.isVisible(2));
  EXPECT_TRUE(small.tree.isVisible(kRootNode));
  small.tree.restoreSubtree(record);
  for (const NodeId node : {1u, 2u, 3u, 4u}) EXPECT_TRUE(small.tree.isVisible(node)) << node;
}

TEST(FileTreeVisibility, WaitsForTheOuterOfTwoThatAreTakenOut) {
  SmallTree small;
  const RemovedSubtree inner = small.tree.removeSubtree(3);
  const RemovedSubtree outer = small.tree.removeSubtree(1);
  small.tree.restoreSubtree(inner);
  EXPECT_FALSE(small.tree.isVisible(3)) << "its folder is still out";
  small.tree.restoreSubtree(outer);
  EXPECT_TRUE(small.tree.isVisible(3));
}

TEST(FileTreeVisibility, DoesNotBeginForWhatTheWalkAddsInsideATakenOutFolder) {
  SmallTree small;
  const RemovedSubtree record = small.tree.removeSubtree(2);
  const NodeId late = add(small.tree, Listing(2).folder("late")).front();
  add(small.tree, Listing(late).file("later", 1));
  EXPECT_FALSE(small.tree.isVisible(late));
  EXPECT_FALSE(small.tree.isVisible(late + 1));
  small.tree.restoreSubtree(record);
  EXPECT_TRUE(small.tree.isVisible(late));
  EXPECT_TRUE(small.tree.isVisible(late + 1));
}

TEST(FileTreeVisibility, EndsForGoodForAllThatIsReadAnew) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId folder = add(tree, Listing(0).folder("folder")).front();
  const NodeId old = add(tree, Listing(folder).folder("old")).front();
  add(tree, Listing(old).file("deep", 1));
  const NodeId deep = tree.firstChild(old);
  ASSERT_TRUE(tree.dropContents(folder));
  EXPECT_FALSE(tree.isVisible(old));
  EXPECT_EQ(tree.parent(old), folder) << "its way up still leads to the root";
  EXPECT_EQ(tree.children(old).first, deep) << "and the one below it is still held";
  EXPECT_FALSE(tree.isVisible(deep));
  EXPECT_TRUE(tree.isVisible(folder));

  const NodeId fresh = add(tree, Listing(folder).folder("old")).front();
  EXPECT_TRUE(tree.isVisible(fresh));
  EXPECT_FALSE(tree.isVisible(old));
  EXPECT_FALSE(tree.isVisible(deep));
}

}  // namespace
}  // namespace sizewalk
