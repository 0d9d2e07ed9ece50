#include "app/lists/folder_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

/// /r holds big/ (with inner/ and its file deep, and a file), small.txt and empty/.
struct Tree {
  Tree() {
    tree.createRoot("/r");
    const auto folders = add(tree, Listing(0).folder("empty").file("small.txt", 5).folder("big"));
    empty = folders[0];
    big = folders[1];
    inner = add(tree, Listing(big).file("file", 40).folder("inner")).front();
    add(tree, Listing(inner).file("deep", 60));
    rows.show(&tree);
  }

  /// The rows as indented names, "+" before what can be opened and "-" before what is open.
  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    for (const FolderRow& row : rows.rows()) {
      result.push_back(std::string(static_cast<std::size_t>(row.depth), ' ') +
                       (row.expanded     ? "-"
                        : row.expandable ? "+"
                                         : "") +
                       std::string(tree.name(row.node)));
    }
    return result;
  }

  FileTree tree;
  NodeId empty = 0, big = 0, inner = 0;
  FolderRows rows;
};

using Lines = std::vector<std::string>;

TEST(FolderRows, BeginWithTheScannedFolderOpen) {
  EXPECT_EQ(Tree().lines(), (Lines{"-r", " +big", " small.txt", " empty"}));
}

TEST(FolderRows, AreNoneWithoutATreeOrBeforeItsFirstNode) {
  FolderRows rows;
  rows.show(nullptr);
  EXPECT_TRUE(rows.rows().empty());
  const FileTree unborn;
  rows.show(&unborn);
  EXPECT_TRUE(rows.rows().empty());
  EXPECT_FALSE(rows.reveal(0));
}

TEST(FolderRows, PutTheContentsOfAnOpenedFolderBelowIt) {
  Tree t;
  t.rows.open(1);
  EXPECT_EQ(t.lines(), (Lines{"-r", " -big", "  +inner", "  file", " small.txt", " empty"}));
  t.rows.open(1);  // once more changes nothing
  EXPECT_EQ(t.rows.rows().size(), 6u);
}

TEST(FolderRows, OpenNothingThatHoldsNothing) {
  Tree t;
  const Lines before = t.lines();
  t.rows.open(2);
  t.rows.open(3);
  t.rows.open(99);
  EXPECT_EQ(t.lines(), before);
}

TEST(FolderRows, RememberWhatWasOpenInsideAClosedFolder) {
  Tree t;
  t.rows.open(1);
  t.rows.open(2);
  EXPECT_EQ(t.lines(),
            (Lines{"-r", " -big", "  -inner", "   deep", "  file", " small.txt", " empty"}));
  t.rows.close(1);
  EXPECT_EQ(t.lines(), (Lines{"-r", " +big", " small.txt", " empty"}));
  t.rows.open(1);
  EXPECT_EQ(t.rows.rows().size(), 7u);
}

TEST(FolderRows, CloseTheScannedFolderToo) {
  Tree t;
  t.rows.close(0);
  EXPECT_EQ(t.lines(), Lines{"+r"});
  t.rows.refresh();
  EXPECT_EQ(t.lines(), Lines{"+r"});
}

TEST(FolderRows, OrderEqualSizesByName) {
  FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("b", 1).file("c", 2).file("a", 1));
  FolderRows rows;
  rows.show(&tree);
  std::string order;
  for (const FolderRow& row : rows.rows().subspan(1)) order += tree.name(row.node);
  EXPECT_EQ(order, "cab");
}

TEST(FolderRows, FollowTheMeasure) {
  FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("long", 9, 1).file("heavy", 1, 9));
  FolderRows rows;
  rows.show(&tree);
  EXPECT_EQ(tree.name(rows.rows()[1].node), "long");
  rows.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(tree.name(rows.rows()[1].node), "heavy");
}

TEST(FolderRows, KeepFoldersOpenWhileTheTreeGrows) {
  Tree t;
  t.rows.open(1);
  add(t.tree, Listing(t.empty).file("late", 1000));
  EXPECT_EQ(t.rows.rows().size(), 6u) << "not before it is told to look";
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " +empty", " -big", "  +inner", "  file", " small.txt"}));
}

TEST(FolderRows, ShowNothingThatIsTakenOut) {
  Tree t;
  const auto record = t.tree.removeSubtree(t.inner);
  const auto file = t.tree.removeSubtree(t.tree.children(t.big).first);
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " small.txt", " big", " empty"})) << "big holds nothing by now";
  t.tree.restoreSubtree(record);
  t.tree.restoreSubtree(file);
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " +big", " small.txt", " empty"}));
}

TEST(FolderRows, StayInOrderWhileSizesGrow) {
  FileTree tree;
  tree.createRoot("/r");
  Listing listing(0);
  for (int i = 0; i < 40; ++i) {
    listing.folder("d" + std::to_string(i))
        .file("f" + std::to_string(i), std::uint64_t(i % 7) * 10);
  }
  const auto folders = add(tree, listing);
  FolderRows rows;
  rows.show(&tree);
  std::uint64_t size = 1;
  for (const NodeId folder : folders) {
    add(tree, Listing(folder).file("late", size = size * 37 % 101));
    rows.refresh();
    FolderRows anew;
    anew.show(&tree);
    ASSERT_TRUE(std::ranges::equal(rows.rows(), anew.rows()));
  }
}

TEST(FolderRows, LeadToWhatOpenFoldersHold) {
  Tree t;
  EXPECT_TRUE(t.rows.leadsTo(kRootNode));
  EXPECT_TRUE(t.rows.leadsTo(t.big));
  EXPECT_FALSE(t.rows.leadsTo(t.inner)) << "big is closed";
  EXPECT_FALSE(t.rows.leadsTo(900));
  t.rows.open(1);
  EXPECT_TRUE(t.rows.leadsTo(t.inner));
  ASSERT_TRUE(t.tree.removeSubtree(t.big).valid);
  EXPECT_FALSE(t.rows.leadsTo(t.big));
  EXPECT_FALSE(t.rows.leadsTo(t.inner));
  EXPECT_FALSE(FolderRows().leadsTo(kRootNode));
}

TEST(FolderRows, LeadToNothingThatWasReadAnew) {
  Tree t;
  t.rows.open(1);
  const NodeId old = t.inner;
  ASSERT_TRUE(t.tree.dropContents(t.big));
  add(t.tree, Listing(t.big).folder("inner"));
  EXPECT_FALSE(t.rows.leadsTo(old));
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " small.txt", " -big", "  inner", " empty"}));
}

TEST(FolderRows, OpenTheWayToANode) {
  Tree t;
  const NodeId deep = t.tree.children(t.inner).first;
  EXPECT_EQ(t.rows.reveal(deep), 3u);
  EXPECT_EQ(t.lines(),
            (Lines{"-r", " -big", "  -inner", "   deep", "  file", " small.txt", " empty"}));
  EXPECT_EQ(t.rows.reveal(kRootNode), 0u);
  EXPECT_FALSE(t.rows.reveal(900));
  ASSERT_TRUE(t.tree.removeSubtree(t.inner).valid);
  EXPECT_FALSE(t.rows.reveal(deep)) << "nothing leads to it";
}

TEST(FolderRows, OpenNothingOnTheWayToWhatIsTakenOut) {
  Tree t;
  const NodeId deep = t.tree.children(t.inner).first;
  const auto record = t.tree.removeSubtree(t.big);
  EXPECT_FALSE(t.rows.reveal(deep));
  t.tree.restoreSubtree(record);
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " +big", " small.txt", " empty"}));
}

TEST(FolderRows, StayOpenInWhatIsTakenOutAndPutBack) {
  Tree t;
  t.rows.reveal(t.tree.children(t.inner).first);
  const auto record = t.tree.removeSubtree(t.big);
  t.rows.refresh();
  EXPECT_EQ(t.lines(), (Lines{"-r", " small.txt", " empty"}));
  t.tree.restoreSubtree(record);
  t.rows.refresh();
  EXPECT_EQ(t.lines(),
            (Lines{"-r", " -big", "  -inner", "   deep", "  file", " small.txt", " empty"}));
}

TEST(FolderRows, OpenNoRowOfWhatWentSinceTheyLooked) {
  Tree t;
  t.rows.open(1);
  const auto inner = t.rows.find(t.inner);
  ASSERT_TRUE(inner && t.rows.rows()[*inner].expandable);
  ASSERT_TRUE(t.tree.dropContents(t.big));
  t.rows.open(*inner);
  EXPECT_EQ(t.lines(), (Lines{"-r", " -big", "  +inner", "  file", " small.txt", " empty"}));
}

TEST(FolderRows, ReachFiveThousandLevelsDown) {
  FileTree tree;
  tree.createRoot("/r");
  NodeId folder = kRootNode;
  for (int i = 0; i < 5000; ++i) folder = add(tree, Listing(folder).folder("d")).front();
  add(tree, Listing(folder).file("bottom", 1));
  FolderRows rows;
  rows.show(&tree);
  EXPECT_EQ(rows.reveal(folder), 5000u);
  EXPECT_EQ(rows.rows().back().depth, 5001 - 1);
}

}  // namespace
}  // namespace app
