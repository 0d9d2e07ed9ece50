#include "app/map/drawn_kind.h"

#include <gtest/gtest.h>

#include <vector>

#include "app/map/treemap_render.h"
#include "tests/app/map/map_tree.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::file;
using test::fill;
using test::fillRoot;
using test::folder;

constexpr std::uint16_t kPaper = 5;
constexpr std::uint16_t kPhoto = 8;
constexpr MeasureSettings kLengthsAlone;

/// The kind that the root's first subfolder has the colour of when it is drawn as one block.
sizewalk::KindIndex kindOfSmallFolder(const FileTree& tree, NodeId node,
                                      const MeasureSettings& measure = kLengthsAlone) {
  const RenderedTreemap map =
      renderTreemap(tree, kRootNode, 100, 100, KindColours(true), {}, measure);
  for (const PictureBlock& block : map.blocks) {
    if (block.id == static_cast<std::int32_t>(node)) {
      EXPECT_TRUE(block.painted);
      return block.kind;
    }
  }
  ADD_FAILURE() << "no block";
  return 0;
}

/// A folder of `entries` beside a file so large that the folder has a few pixels only.
NodeId addSmallFolder(FileTree& tree, const std::vector<test::MapEntry>& entries) {
  std::uint64_t size = 1;
  for (const test::MapEntry& entry : entries) size += entry.apparent;
  const NodeId node = fillRoot(tree, {folder(), file(size * 2000)}).front();
  fill(tree, node, entries);
  return node;
}

TEST(DominantKind, IsThatOfTheLargestFile) {
  FileTree tree;
  const NodeId node = addSmallFolder(tree, {file(10), file(30, kPaper), file(30, kPhoto)});
  EXPECT_EQ(kindOfSmallFolder(tree, node), kPaper);  // the first of equal ones
}

TEST(DominantKind, DescendsIntoTheLargestFolder) {
  FileTree tree;
  const NodeId node = addSmallFolder(tree, {file(20, kPaper), folder(), file(15)});
  fill(tree, node + 3, {file(12, kPaper), file(13, kPhoto)});
  EXPECT_EQ(dominantKind(tree, node, kLengthsAlone), kPhoto);
}

TEST(DominantKind, LooksAtTheFirst256ChildrenOnly) {
  std::vector<test::MapEntry> entries(256, file(1));
  entries[255] = file(5, kPaper);
  entries.push_back(file(100, kPhoto));
  FileTree tree;
  EXPECT_EQ(dominantKind(tree, addSmallFolder(tree, entries), kLengthsAlone), kPaper);
}

TEST(DominantKind, GivesUpAfterEightLevels) {
  for (const int levels : {7, 8}) {
    FileTree tree;
    tree.createRoot("/map");
    NodeId node = kRootNode;
    for (int i = 0; i < levels; ++i) node = fill(tree, node, {folder()}).front();
    fill(tree, node, {file(9, kPaper)});
    EXPECT_EQ(dominantKind(tree, kRootNode, kLengthsAlone),
              levels == 7 ? kPaper : sizewalk::kKindFolder);
  }
}

TEST(DominantKind, OfAFolderWithoutSizesIsTheFallback) {
  FileTree tree;
  const NodeId node = fillRoot(tree, {folder(), file(5)}).front();
  fill(tree, node, {file(0, kPaper)});
  EXPECT_EQ(dominantKind(tree, node, kLengthsAlone), sizewalk::kKindFolder);
  const RenderedTreemap map =
      renderTreemap(tree, node, 10, 10, KindColours(true), {}, kLengthsAlone);
  EXPECT_EQ(map.blocks.at(0).reason, BlockReason::nothingVisible);
  EXPECT_EQ(map.blocks.at(0).kind, sizewalk::otherKind);
}

TEST(DominantKind, GoesByLengthEvenWhereSizesOnDiskAreShown) {
  FileTree tree;
  const NodeId node =
      addSmallFolder(tree, {{kPaper, 100, 10, 0, false}, {kPhoto, 10, 100, 0, false}});
  EXPECT_EQ(kindOfSmallFolder(tree, node, {Measure::CurrentSize, true}), kPaper);
}

TEST(DominantKind, GoesByTheMeasureShown) {
  FileTree tree(test::mapTreeOptions());
  const NodeId node = addSmallFolder(tree, {{kPaper, 100, 100, test::kSixMonthsAgo, false},
                                            {kPhoto, 10, 10, test::kMonthAgo, false}});
  EXPECT_EQ(dominantKind(tree, node, {Measure::AddedLastSixMonths, true}), kPaper);
  EXPECT_EQ(dominantKind(tree, node, {Measure::AddedLastMonth, true}), kPhoto);
}

TEST(DominantKind, PassesOverWhatIsTakenOut) {
  FileTree tree;
  const NodeId node = addSmallFolder(tree, {file(20, kPaper), file(10, kPhoto)});
  tree.removeSubtree(node + 2);
  EXPECT_EQ(dominantKind(tree, node, kLengthsAlone), kPhoto);
}

}  // namespace
}  // namespace app
