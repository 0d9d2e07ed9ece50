#include "app/model/selection.h"

#include <gtest/gtest.h>

#include <unordered_set>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::NodeId;
using test::add;
using test::Listing;

class SelectionTest : public ::testing::Test {
 protected:
  SelectionTest() {
    selection.onChanged = [this] { ++changes; };
  }

  Selection selection;
  int changes = 0;
};

TEST_F(SelectionTest, HoldsTheOneSelectedLast) {
  selection.select(3);
  selection.select(7);
  EXPECT_FALSE(selection.contains(3));
  EXPECT_TRUE(selection.contains(7));
  EXPECT_EQ(selection.size(), 1u);
  EXPECT_EQ(changes, 2);
}

TEST_F(SelectionTest, TogglesOneAfterAnother) {
  selection.toggle(3);
  selection.toggle(7);
  EXPECT_EQ(selection.size(), 2u);
  selection.toggle(3);
  EXPECT_FALSE(selection.contains(3));
  EXPECT_TRUE(selection.contains(7));
}

TEST_F(SelectionTest, KeepsWhatIsSelectedInOrder) {
  selection.replace(std::vector<NodeId>{9, 2, 5, 2});
  EXPECT_EQ(selection.sorted(), (std::vector<NodeId>{2, 5, 9}));
  for (const NodeId node : {7u, 5u, 1u, 9u, 12u}) selection.toggle(node);
  EXPECT_EQ(selection.sorted(), (std::vector<NodeId>{1, 2, 7, 12}));
  EXPECT_EQ(selection.nodes(), (std::unordered_set<NodeId>{1, 2, 7, 12}));
  selection.clear();
  EXPECT_TRUE(selection.sorted().empty());
}

TEST_F(SelectionTest, SaysNothingWhereNothingChanged) {
  selection.clear();
  selection.select(3);
  selection.select(3);
  selection.replace(std::vector<NodeId>{3});
  EXPECT_EQ(changes, 1);
}

TEST_F(SelectionTest, LetsGoOfWhatTheTreeDoesNotShowAnyMore) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("out").folder("anew").folder("stays"));
  for (const NodeId folder : folders) add(tree, Listing(folder).file("file", 1));
  const auto fileIn = [&](std::size_t which) { return tree.firstChild(folders[which]); };
  selection.replace(std::vector<NodeId>{fileIn(0), fileIn(1), fileIn(2), folders[1]});
  changes = 0;
  selection.keepVisible(tree);
  EXPECT_EQ(changes, 0);

  const NodeId dropped = fileIn(1), kept = fileIn(2);
  ASSERT_TRUE(tree.removeSubtree(folders[0]).valid);
  ASSERT_TRUE(tree.dropContents(folders[1]));
  selection.keepVisible(tree);
  EXPECT_EQ(selection.nodes(), (std::unordered_set<NodeId>{kept, folders[1]}));
  EXPECT_EQ(selection.sorted().size(), 2u);
  EXPECT_FALSE(selection.contains(dropped));
  EXPECT_EQ(changes, 1);
}

TEST_F(SelectionTest, LeavesOutWhatLiesInsideASelectedFolder) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  const NodeId outer = add(tree, Listing(0).folder("outer").file("beside", 1)).front();
  const NodeId beside = tree.firstChild(0) == outer ? outer + 1 : outer - 1;
  const NodeId inner = add(tree, Listing(outer).folder("inner")).front();
  add(tree, Listing(inner).file("deep", 1));
  const NodeId deep = tree.firstChild(inner);

  selection.replace(std::vector<NodeId>{deep, outer, beside});
  EXPECT_EQ(selection.outermost(tree), (std::vector<NodeId>{outer, beside}));
  selection.replace(std::vector<NodeId>{deep, inner});
  EXPECT_EQ(selection.outermost(tree), (std::vector<NodeId>{inner}));
  selection.toggle(sizewalk::kRootNode);
  EXPECT_EQ(selection.outermost(tree), (std::vector<NodeId>{sizewalk::kRootNode}));
}

using Nodes = std::vector<NodeId>;

TEST(Selection, IsWhatACommandIsAboutUnlessItHasAnotherTarget) {
  Selection selection;
  EXPECT_EQ(selection.nodesFor(std::nullopt), Nodes{});
  EXPECT_EQ(selection.nodesFor(7), Nodes{7});
  selection.toggle(5);
  selection.toggle(3);
  EXPECT_EQ(selection.nodesFor(std::nullopt), (Nodes{3, 5}));
  EXPECT_EQ(selection.nodesFor(5), (Nodes{3, 5}));
  EXPECT_EQ(selection.nodesFor(7), Nodes{7});
  EXPECT_EQ(selection.nodesFor(sizewalk::kRootNode), (Nodes{3, 5})) << "it is never the target";
}

}  // namespace
}  // namespace app
