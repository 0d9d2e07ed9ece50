#include "app/map/treemap_layout.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

#include "app/map/entry_groups.h"
#include "tests/app/map/map_tree.h"
#include "tests/app/map/naive_map.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::file;
using test::fill;
using test::fillRoot;
using test::folder;

constexpr std::uint16_t kPdf = 5;
constexpr std::uint16_t kJpeg = 8;

std::vector<TreemapBlock> layOut(const FileTree& tree, double width, double height,
                                 const std::vector<ExtraBlock>& extraBlocks = {},
                                 const MeasureSettings& measure = {}, NodeId node = kRootNode) {
  std::vector<TreemapBlock> blocks;
  layoutTreemap(tree, node, {0, 0, width, height}, 0, measure, extraBlocks, {}, kRidgeHeight,
                &blocks);
  return blocks;
}

std::vector<std::int32_t> ids(const std::vector<TreemapBlock>& blocks) {
  std::vector<std::int32_t> result;
  for (const TreemapBlock& block : blocks) result.push_back(block.id);
  return result;
}

using Ids = std::vector<std::int32_t>;

TEST(TreemapLayout, OfASquareStartsWithAColumnAtTheLeft) {
  FileTree tree;
  fillRoot(tree, {file(50), file(30), file(20)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 100, 100);
  ASSERT_EQ(blocks.size(), 4U);
  EXPECT_EQ(blocks[1].rect, (MapRect{0, 0, 50, 100}));
  EXPECT_EQ(blocks[2].rect, (MapRect{50, 0, 50, 60}));
  EXPECT_EQ(blocks[3].rect, (MapRect{50, 60, 50, 40}));
}

TEST(TreemapLayout, PutsTheFoldersOwnBlockFirstAndUnpainted) {
  FileTree tree;
  fillRoot(tree, {file(50)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 40, 30);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0], (TreemapBlock{{0, 0, 40, 30}, 0, 0, 0, false, BlockReason::laidOut, {}}));
  EXPECT_TRUE(blocks[1].painted);
  EXPECT_EQ(blocks[1].depth, 1);
  EXPECT_EQ(blocks[1].reason, BlockReason::laidOut);
}

TEST(TreemapLayout, AddsARidgeForEveryLevelButTheFocusedOne) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {folder()});
  fill(tree, folders[0], {file(10)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 40, 20);
  ASSERT_EQ(blocks.size(), 3U);
  EXPECT_EQ(blocks[0].cushion, CushionCoefficients{});
  const double first = 4 * (0.38 * 0.91);
  EXPECT_EQ(blocks[1].cushion, (CushionCoefficients{0 - first / 40, 0 - first / 20, first * 40 / 40,
                                                    first * 20 / 20}));
  const double second = 4 * (0.38 * 0.91 * 0.91);
  EXPECT_EQ(blocks[2].cushion.quadraticX, 0 - first / 40 - second / 40);
  EXPECT_EQ(blocks[2].cushion.linearY, first * 20 / 20 + second * 20 / 20);
}

TEST(TreemapLayout, OfAFolderWithoutSizesIsOneBlockWithNothingVisible) {
  FileTree tree;
  fillRoot(tree, {file(0), file(0)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 40, 30);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].reason, BlockReason::nothingVisible);
  EXPECT_TRUE(blocks[0].painted);
}

TEST(TreemapLayout, LeavesOutSizesPastTheSignedRange) {
  FileTree tree;
  std::vector<test::MapEntry> entries(22, file(1));
  entries[0] = file(0x8000000000000000);
  entries[1] = file(1000);
  fillRoot(tree, entries);
  // It neither shows nor counts: the others share the map by what they take of 1020.
  EXPECT_EQ(ids(layOut(tree, 10, 10)), (Ids{0, 2, 3}));
}

TEST(TreemapLayout, SharesTheMapAmongSizesBeyondTheReachOfADouble) {
  FileTree tree;
  const std::uint64_t sizes[] = {1, (1ULL << 53) + 1, 1ULL << 62, (1ULL << 63) - 1};
  fillRoot(tree, {file(sizes[0]), file(sizes[1]), file(sizes[2]), file(sizes[3])});
  const std::vector<TreemapBlock> blocks = layOut(tree, 60, 40);
  ASSERT_EQ(ids(blocks), (Ids{0, 4, 3, 2}));  // the single byte gets no pixel
  // As parts of 2^63.
  const double total = 1 + 0.5 + 1.0 / 1024;
  EXPECT_NEAR(blocks[1].rect.area(), 2400 / total, 1e-9);
  EXPECT_NEAR(blocks[2].rect.area(), 1200 / total, 1e-9);
  EXPECT_NEAR(blocks[3].rect.area(), 2400.0 / 1024 / total, 1e-9);
}

TEST(TreemapLayout, MergesFilesUnderAPixelIntoOneBlockAtTheEnd) {
  FileTree tree;
  std::vector<test::MapEntry> entries(1000, file(1));
  entries[0] = file(100000, kPdf);
  entries[500] = file(50000, kJpeg);
  fillRoot(tree, entries);
  const std::vector<TreemapBlock> blocks = layOut(tree, 100, 100);
  ASSERT_EQ(ids(blocks), (Ids{0, 1, 501, 2}));
  EXPECT_EQ(blocks[3].reason, BlockReason::rest);
  EXPECT_EQ(blocks[3].restCount, 998);
  EXPECT_EQ(blocks[3].depth, 1);
  EXPECT_EQ(blocks[1].restCount, 0);
}

TEST(TreemapLayout, DrawsNothingForARestUnderAPixelAndFillsTheWhole) {
  FileTree tree;
  std::vector<test::MapEntry> entries(10, file(1));
  entries.push_back(file(1000000));
  fillRoot(tree, entries);
  const std::vector<TreemapBlock> blocks = layOut(tree, 100, 100);
  ASSERT_EQ(ids(blocks), (Ids{0, 11}));
  EXPECT_EQ(blocks[1].rect, (MapRect{0, 0, 100, 100}));
}

TEST(TreemapLayout, KeepsAnEntryOfExactlyOnePixel) {
  FileTree tree;
  fillRoot(tree, {file(1), file(99)});
  EXPECT_EQ(layOut(tree, 10, 10).back().reason, BlockReason::laidOut);
  EXPECT_EQ(layOut(tree, 10, 9.9).back().id, 2);  // now both the file and the rest are too small
}

TEST(TreemapLayout, NamesARestAfterItsFirstNodeOrElseItsLastExtraBlock) {
  FileTree tree;
  fillRoot(tree, {file(1000000)});
  std::vector<ExtraBlock> extras = {{-2, "", 600, 0}, {-3, "", 600, 0}};
  std::vector<TreemapBlock> blocks = layOut(tree, 30, 30, extras);
  ASSERT_EQ(ids(blocks), (Ids{0, 1, -3}));
  EXPECT_EQ(blocks[2].restCount, 2);

  FileTree other;
  fillRoot(other, {file(1000000), file(600), file(600)});
  blocks = layOut(other, 30, 30, extras);
  EXPECT_EQ(ids(blocks), (Ids{0, 1, 2}));
  EXPECT_EQ(blocks[2].restCount, 4);
}

TEST(TreemapLayout, TreatsASmallFolderAsALeaf) {
  FileTree tree;
  fillRoot(tree, {file(10)});
  const auto reason = [&](double width, double height) {
    return layOut(tree, width, height).front().reason;
  };
  EXPECT_EQ(reason(2, 4), BlockReason::tooSmall);
  EXPECT_EQ(reason(3, 3), BlockReason::laidOut);
  EXPECT_EQ(reason(0.99, 100), BlockReason::tooSmall);
  EXPECT_EQ(reason(100, 0.99), BlockReason::tooSmall);
  EXPECT_EQ(reason(1, 9), BlockReason::laidOut);
}

TEST(TreemapLayout, SaysNoChildrenBeforeAnythingElse) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {folder(), file(5)});
  EXPECT_EQ(layOut(tree, 0.5, 0.5, {}, {}, folders[0]).front().reason, BlockReason::noChildren);
  EXPECT_EQ(layOut(tree, 50, 50, {}, {}, 2).front().reason, BlockReason::noChildren);  // a file
}

TEST(TreemapLayout, StopsAtDepth64) {
  FileTree tree;
  tree.createRoot("/map");
  NodeId node = kRootNode;
  for (int level = 0; level < 5000; ++level) node = fill(tree, node, {folder()}).front();
  fill(tree, node, {file(1000)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 500, 400);
  ASSERT_EQ(blocks.size(), 65U);
  EXPECT_EQ(blocks.back().depth, 64);
  EXPECT_EQ(blocks.back().reason, BlockReason::depthLimit);
  EXPECT_TRUE(blocks.back().painted);

  std::vector<TreemapBlock> small;
  layoutTreemap(tree, 64, {0, 0, 1, 2}, 64, {}, {}, {}, 0.1, &small);
  layoutTreemap(tree, node + 1, {0, 0, 1, 2}, 64, {}, {}, {}, 0.1, &small);
  ASSERT_EQ(small.size(), 2U);
  EXPECT_EQ(small[0].reason, BlockReason::depthLimit);  // before it is too small
  EXPECT_EQ(small[1].reason, BlockReason::noChildren);
}

TEST(TreemapLayout, KeepsFilesOfOneKindTogetherAndFoldersApart) {
  FileTree tree;
  const std::vector<NodeId> folders =
      fillRoot(tree, {file(40, kPdf), folder(), file(50, kJpeg), file(30, kPdf), folder()});
  fill(tree, folders[0], {file(60)});
  fill(tree, folders[1], {file(20)});
  // Documents 70, the first folder 60, pictures 50, the second folder 20.
  EXPECT_EQ(ids(layOut(tree, 100, 100)), (Ids{0, 1, 4, 2, 6, 3, 5, 7}));
}

TEST(TreemapLayout, TakesExtraBlocksInAtTheTopOnly) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {file(40, kPdf), file(1), folder()});
  fill(tree, folders[0], {file(30)});
  const std::vector<ExtraBlock> extras = {
      {kFreeSpaceBlock, "Free space", 100, 0}, {kOtherSpaceBlock, "", 0, 0}, {-9, "", -5, 0}};
  const std::vector<TreemapBlock> blocks = layOut(tree, 100, 100, extras);
  EXPECT_EQ(ids(blocks), (Ids{0, kFreeSpaceBlock, 1, 3, 4, 2}));
  EXPECT_NEAR(blocks[1].rect.area(), 10000.0 * 100 / 171, 1e-6);
  EXPECT_EQ(blocks[1].depth, 1);
  EXPECT_EQ(blocks[1].reason, BlockReason::laidOut);
  EXPECT_EQ(blocks[1].restCount, 0);
}

TEST(TreemapLayout, PutsTheFolderWithIndex1WithTheFreeSpace) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {folder(), folder(), file(100, kPdf)});
  fill(tree, folders[0], {file(20)});
  fill(tree, folders[1], {file(90)});
  // The free space, 95, would come behind the document; together with folder 1 it comes first, and
  // the folder is placed in front of folder 2, which is larger.
  const std::vector<TreemapBlock> blocks =
      layOut(tree, 100, 100, {{kFreeSpaceBlock, "Free space", 95, 0}});
  EXPECT_EQ(ids(blocks), (Ids{0, kFreeSpaceBlock, 1, 4, 3, 2, 5}));
}

TEST(TreemapLayout, PutsTheFolderWithIndex2WithTheOtherSpace) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {folder(), folder(), file(100, kPdf)});
  fill(tree, folders[0], {file(90)});
  fill(tree, folders[1], {file(20)});
  const std::vector<TreemapBlock> blocks =
      layOut(tree, 100, 100, {{kOtherSpaceBlock, "Other space in use", 95, 0}});
  EXPECT_EQ(ids(blocks), (Ids{0, kOtherSpaceBlock, 2, 5, 3, 1, 4}));
}

TEST(TreemapLayout, LeavesOutWhatIsTakenOut) {
  FileTree tree;
  fillRoot(tree, {file(50), file(30), file(20)});
  tree.removeSubtree(1);
  EXPECT_EQ(ids(layOut(tree, 100, 100)), (Ids{0, 2, 3}));
  EXPECT_EQ(measureValue(tree, 1, {}), 0);
}

TEST(TreemapLayout, GoesByTheMeasure) {
  FileTree tree(test::mapTreeOptions());
  fillRoot(tree, {{kPdf, 7, 11, 0, false},
                  {kPdf, 7, 13, test::kSixMonthsAgo, false},
                  {kPdf, 7, 17, test::kMonthAgo, false},
                  {kPdf, 7, 19, test::kLastScan, false}});
  EXPECT_EQ(measureValue(tree, 0, {Measure::CurrentSize, false}), 28);
  EXPECT_EQ(measureValue(tree, 0, {Measure::CurrentSize, true}), 60);
  EXPECT_EQ(measureValue(tree, 0, {Measure::AddedLastMonth, false}), 36);
  EXPECT_EQ(measureValue(tree, 0, {Measure::AddedLastSixMonths, false}), 49);
  EXPECT_EQ(measureValue(tree, 0, {Measure::AddedSinceLastScan, false}), 19);
  EXPECT_EQ(ids(layOut(tree, 90, 90, {}, {Measure::AddedLastMonth, false})), (Ids{0, 4, 3}));
}

TEST(TreemapLayout, DoesNotDependOnTheOrderOfEqualEntries) {
  FileTree tree;
  fillRoot(tree, {file(10, kPdf), file(10, kJpeg), file(10, kPdf), file(10, kJpeg)});
  const std::vector<TreemapBlock> blocks = layOut(tree, 40, 40);
  ASSERT_EQ(blocks.size(), 5U);
  // Which of two equal ones comes first is not told; that kinds lie together and all are equal is.
  EXPECT_EQ(tree.kind(static_cast<NodeId>(blocks[1].id)),
            tree.kind(static_cast<NodeId>(blocks[2].id)));
  EXPECT_EQ(tree.kind(static_cast<NodeId>(blocks[3].id)),
            tree.kind(static_cast<NodeId>(blocks[4].id)));
  for (std::size_t i = 1; i < blocks.size(); ++i) EXPECT_NEAR(blocks[i].rect.area(), 400, 1e-9);
}

/// Each laid-out folder's entries, which are inside it, against its own area.
void expectBlocksTile(const std::vector<TreemapBlock>& blocks) {
  constexpr double kRounding = 1e-6;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const TreemapBlock& parent = blocks[i];
    if (parent.painted) continue;
    double area = 0;
    std::vector<MapRect> inside;
    for (std::size_t j = i + 1; j < blocks.size() && blocks[j].depth > parent.depth; ++j) {
      if (blocks[j].depth != parent.depth + 1) continue;
      const MapRect& r = blocks[j].rect;
      ASSERT_GE(r.x, parent.rect.x - kRounding);
      ASSERT_GE(r.y, parent.rect.y - kRounding);
      ASSERT_LE(r.x + r.width, parent.rect.x + parent.rect.width + kRounding);
      ASSERT_LE(r.y + r.height, parent.rect.y + parent.rect.height + kRounding);
      for (const MapRect& other : inside) {
        ASSERT_TRUE(
            r.x + r.width <= other.x + kRounding || other.x + other.width <= r.x + kRounding ||
            r.y + r.height <= other.y + kRounding || other.y + other.height <= r.y + kRounding);
      }
      inside.push_back(r);
      area += r.area();
    }
    ASSERT_NEAR(area, parent.rect.area(), kRounding * parent.rect.area());
  }
}

TEST(TreemapLayout, TilesEveryFolderWithoutOverlap) {
  std::mt19937_64 random(21);
  for (int round = 0; round < 40; ++round) {
    FileTree tree(test::mapTreeOptions());
    test::fillRandomly(tree, 2000, random);
    expectBlocksTile(layOut(tree, 1 + static_cast<double>(random() % 900),
                            1 + static_cast<double>(random() % 700)));
    if (HasFatalFailure()) FAIL() << "round " << round;
  }
}

TEST(TreemapLayout, OfATreeThatGrowsIsSoundAtEveryMoment) {
  FileTree tree(test::mapTreeOptions());
  tree.createRoot("/map");
  std::atomic<bool> done = false;
  std::thread writer([&] {
    std::mt19937_64 random(22);
    std::vector<NodeId> unread = {kRootNode};
    for (std::size_t next = 0; next < unread.size() && tree.nodeCount() < 40000; ++next) {
      std::vector<test::MapEntry> entries(20, file(random() % 5000));
      entries[0] = entries[1] = entries[2] = folder();
      for (const NodeId node : fill(tree, unread[next], entries)) unread.push_back(node);
      if (next % 16 == 3) tree.removeSubtree(unread[next]);
    }
    done = true;
  });
  while (!done) {
    expectBlocksTile(layOut(tree, 300, 200));
    if (HasFatalFailure()) break;
  }
  writer.join();
  expectBlocksTile(layOut(tree, 300, 200));
}

TEST(Squarify, SortsUnlessTheItemsAreSorted) {
  const std::vector<WeightedItem> items = {{1, 2}, {2, 6}, {3, 6}, {4, 1}};
  std::vector<PlacedItem> placed;
  squarify(items, {0, 0, 6, 4}, Presorted::No, &placed);
  Ids order;
  for (const PlacedItem& item : placed) order.push_back(item.id);
  EXPECT_EQ(order, (Ids{2, 3, 1, 4}));
  std::vector<PlacedItem> asGiven;
  squarify(items, {0, 0, 6, 4}, Presorted::Yes, &asGiven);
  EXPECT_EQ(asGiven.front().id, 1);
  EXPECT_EQ(asGiven, test::squarifyNaively(items, {0, 0, 6, 4}));
}

TEST(Squarify, PlacesTheExampleOfThePaper) {
  const std::vector<WeightedItem> items = {{1, 6}, {2, 6}, {3, 4}, {4, 3}, {5, 2}, {6, 2}, {7, 1}};
  std::vector<PlacedItem> placed;
  squarify(items, {0, 0, 6, 4}, Presorted::Yes, &placed);
  ASSERT_EQ(placed.size(), 7U);
  EXPECT_EQ(placed[0].rect, (MapRect{0, 0, 3, 2}));
  EXPECT_EQ(placed[1].rect, (MapRect{0, 2, 3, 2}));
  EXPECT_NEAR(placed[2].rect.width, 12.0 / 7, 1e-12);
  EXPECT_NEAR(placed[3].rect.height, 7.0 / 3, 1e-12);
}

TEST(Squarify, ExtendsARowAtAnEqualRatio) {
  // In the first column one item is 1 × 2, two are 2 × 1 each: the worst ratio is 2 either way.
  const std::vector<WeightedItem> items = {{1, 2}, {2, 2}};
  std::vector<PlacedItem> placed;
  squarify(items, {0, 0, 2, 2}, Presorted::Yes, &placed);
  ASSERT_EQ(placed.size(), 2U);
  EXPECT_EQ(placed[0].rect, (MapRect{0, 0, 2, 1}));
  EXPECT_EQ(placed[1].rect, (MapRect{0, 1, 2, 1}));
}

TEST(Squarify, MatchesTheNaiveRowsOnAnyWeights) {
  std::mt19937_64 random(23);
  for (int round = 0; round < 3000; ++round) {
    std::vector<WeightedItem> items(1 + random() % 60);
    const double spread = static_cast<double>(random() % 12);
    for (std::size_t i = 0; i < items.size(); ++i) {
      items[i] = {
          static_cast<std::int32_t>(i),
          random() % 4 == 0 ? 1.0 : std::exp2(spread * static_cast<double>(random() % 1000) / 250)};
    }
    const MapRect rect = {static_cast<double>(random() % 50), 3,
                          0.01 * static_cast<double>(random() % 100000),
                          0.01 * static_cast<double>(random() % 100000)};
    std::vector<PlacedItem> placed;
    squarify(items, rect, Presorted::Yes, &placed);
    ASSERT_EQ(placed, test::squarifyNaively(items, rect)) << "round " << round;
  }
}

TEST(Squarify, DropsWhatARectangleWithoutAreaHasNoRoomFor) {
  const std::vector<WeightedItem> items = {{1, 1}, {2, 1}};
  for (const MapRect& rect : {MapRect{0, 0, 0, 5}, MapRect{0, 0, 5, 0}, MapRect{0, 0, -1, 5}}) {
    std::vector<PlacedItem> placed;
    squarify(items, rect, Presorted::Yes, &placed);
    EXPECT_TRUE(placed.empty());
  }
}

TEST(EntryGroups, HoldManyGroupsFolderAfterFolder) {
  EntryGroups groups;
  for (int folder = 0; folder < 3; ++folder) {
    groups.clear();
    for (int i = 0; i < 5000; ++i) {
      groups.add(~i, {i, static_cast<double>(1 + i % 100)});
      groups.add(~i, {i + 10000, 1.0});
    }
    std::vector<WeightedItem> arranged;
    groups.arrange(&arranged);
    ASSERT_EQ(arranged.size(), 10000U);
    EXPECT_EQ(arranged[0].id, 99);
    EXPECT_EQ(arranged[1].id, 10099);
    EXPECT_EQ(arranged[2].id, 199);
    EXPECT_EQ(arranged[9998].id, 4900);
    EXPECT_EQ(arranged[9999].id, 14900);
  }
}

}  // namespace
}  // namespace app
