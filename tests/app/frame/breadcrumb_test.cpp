#include "app/frame/breadcrumb.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

/// Ten pixels for every character, whatever it is.
int tenEach(std::string_view text) {
  int characters = 0;
  for (const char c : text) characters += (c & 0xC0) != 0x80;
  return 10 * characters;
}

/// /home/u › Pictures › 2026 › May
struct Tree {
  Tree() {
    tree.createRoot("/home/u");
    for (const char* name : {"Pictures", "2026", "May"}) {
      focus = add(tree, Listing(focus).folder(name)).front();
    }
  }
  std::string shown(int width) const {
    std::string text;
    for (const BreadcrumbSegment& segment : breadcrumb(tree, focus, width, tenEach)) {
      if (!text.empty()) text += kBreadcrumbSeparator;
      text += segment.text;
    }
    return text;
  }
  FileTree tree;
  NodeId focus = kRootNode;
};

TEST(Breadcrumb, NamesEveryFolderFromTheScannedOneToTheOneInFocus) {
  EXPECT_EQ(Tree().shown(1000), "u › Pictures › 2026 › May");
}

TEST(Breadcrumb, LeavesFoldersOutFromTheLeft) {
  const Tree t;
  EXPECT_EQ(t.shown(250), "u › Pictures › 2026 › May") << "it fits to the pixel";
  EXPECT_EQ(t.shown(249), "… › 2026 › May");
  EXPECT_EQ(t.shown(140), "… › 2026 › May");
  EXPECT_EQ(t.shown(139), "… › May");
}

TEST(Breadcrumb, AlwaysNamesTheFolderInFocus) {
  EXPECT_EQ(Tree().shown(0), "… › May");
  FileTree tree;
  tree.createRoot("/r");
  const auto alone = breadcrumb(tree, kRootNode, 0, tenEach);
  ASSERT_EQ(alone.size(), 1u);
  EXPECT_EQ(alone[0].text, "r");
}

TEST(Breadcrumb, LeadsFromTheDotsToTheLastFolderLeftOut) {
  const Tree t;
  const auto segments = breadcrumb(t.tree, t.focus, 140, tenEach);
  EXPECT_EQ(segments[0].node, 1u) << "Pictures";
}

TEST(Breadcrumb, PlacesSegmentsOneAfterTheOther) {
  const Tree t;
  const auto segments = breadcrumb(t.tree, t.focus, 1000, tenEach);
  ASSERT_EQ(segments.size(), 4u);
  EXPECT_EQ(segments[0], (BreadcrumbSegment{0, "u", 0, 10}));
  EXPECT_EQ(segments[1], (BreadcrumbSegment{1, "Pictures", 40, 80}));
  EXPECT_EQ(segments[3].x, 40 + 80 + 30 + 40 + 30);
}

TEST(Breadcrumb, MakesNamesOfBrokenBytesReadable) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId folder = add(tree, Listing(0).folder("caf\xe9")).front();
  EXPECT_EQ(breadcrumb(tree, folder, 1000, tenEach)[1].text, "caf\\351");
}

TEST(Breadcrumb, IsEmptyBeforeTheFolderIsThere) {
  const FileTree tree;
  EXPECT_TRUE(breadcrumb(tree, kRootNode, 1000, tenEach).empty());
}

TEST(Breadcrumb, FitsAWayOfFiveThousandFolders) {
  FileTree tree;
  tree.createRoot("/r");
  NodeId folder = kRootNode;
  for (int i = 0; i < 5000; ++i) folder = add(tree, Listing(folder).folder("d")).front();
  const auto segments = breadcrumb(tree, folder, 300, tenEach);
  EXPECT_EQ(segments.size(), 8u);
  EXPECT_LE(segments.back().x + segments.back().width, 300);
}

}  // namespace
}  // namespace app
