#include "app/map/treemap_render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "app/map/cushion_kernel.h"
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

constexpr std::uint16_t kPdfKind = 5;
constexpr std::uint16_t kJpegKind = 8;
constexpr MeasureSettings kLengths;
const KindColours kColours(true);

RenderedTreemap draw(const FileTree& tree, std::int32_t width, std::int32_t height,
                     const std::vector<ExtraBlock>& extraBlocks = {}) {
  return renderTreemap(tree, kRootNode, width, height, kColours, extraBlocks, kLengths);
}

void expectAsDrawnNaively(const RenderedTreemap& map, const test::NaiveMap& naive) {
  ASSERT_EQ(map.blocks.size(), naive.blocks.size());
  for (std::size_t i = 0; i < map.blocks.size(); ++i) {
    const TreemapBlock& block = naive.blocks[i];
    const PictureBlock expected = {pixelSpan(block.rect, map.width, map.height),
                                   block.id,
                                   block.restCount,
                                   map.blocks[i].kind,
                                   block.painted,
                                   block.reason};
    ASSERT_EQ(map.blocks[i], expected) << "block " << i;
  }
  ASSERT_TRUE(map.pixels == naive.pixels);
  ASSERT_TRUE(map.blockAt == naive.blockAt);
  ASSERT_EQ(map.outlineRects.size(), naive.outlineRects.size());
  for (const auto& [node, rect] : naive.outlineRects) {
    ASSERT_NE(map.outlineRect(node), nullptr);
    ASSERT_EQ(*map.outlineRect(node), pixelSpan(rect, map.width, map.height));
  }
}

std::vector<ExtraBlock> randomExtraBlocks(std::mt19937_64& random) {
  std::vector<ExtraBlock> blocks;
  std::lognormal_distribution<double> size(20, 6);
  if (random() % 2 == 0) {
    blocks.push_back(
        {kFreeSpaceBlock, "Free space", static_cast<std::int64_t>(size(random)), 0x2B3648});
  }
  if (random() % 2 == 0) {
    blocks.push_back({kOtherSpaceBlock, "Other space in use",
                      static_cast<std::int64_t>(size(random)), 0x4A4458});
  }
  return blocks;
}

TEST(TreemapRender, DrawsRandomTreesAsTheyAreDrawnNaively) {
  std::mt19937_64 random(7);
  RenderedTreemap map;
  for (int round = 0; round < 120; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    FileTree tree(test::mapTreeOptions());
    test::fillRandomly(tree, 20 + random() % 3000, random);
    const MeasureSettings measure = {static_cast<Measure>(random() % 4), random() % 2 == 0};
    const auto root = static_cast<NodeId>(random() % 3 == 0 ? random() % tree.nodeCount() : 0);
    const auto width = static_cast<std::int32_t>(random() % (round % 5 == 0 ? 12 : 500));
    const auto height = static_cast<std::int32_t>(random() % (round % 7 == 0 ? 12 : 400));
    const std::vector<ExtraBlock> extraBlocks = randomExtraBlocks(random);
    KindColours colours(round % 3 != 0);
    colours.setKindSlots({{4, 3}, {5, 1}, {75, 0}});
    map = renderTreemap(tree, root, width, height, colours, extraBlocks, measure, std::move(map));
    ASSERT_EQ(map.width, width);
    ASSERT_EQ(map.height, height);
    ASSERT_EQ(map.root, root);
    const test::NaiveMap naive =
        test::drawNaively(tree, root, width, height, colours, extraBlocks, measure);
    expectAsDrawnNaively(map, naive);
    if (HasFatalFailure()) return;
    std::vector<TreemapBlock> blocks;
    if (!naive.blocks.empty()) {
      layoutTreemap(tree, root, {0, 0, double(width), double(height)}, 0, measure, extraBlocks, {},
                    kRidgeHeight, &blocks);
    }
    ASSERT_EQ(blocks, naive.blocks);
  }
}

TEST(TreemapRender, DrawsALargeMapOnSeveralThreadsAsItIsDrawnNaively) {
  std::mt19937_64 random(8);
  FileTree tree(test::mapTreeOptions());
  test::fillRandomly(tree, 60000, random);
  const MeasureSettings measure = {Measure::CurrentSize, true};
  const RenderedTreemap map = renderTreemap(tree, kRootNode, 1311, 977, kColours, {}, measure);
  expectAsDrawnNaively(map, test::drawNaively(tree, kRootNode, 1311, 977, kColours, {}, measure));
}

TEST(TreemapRender, OfAMapWithoutAreaIsEmptyAndHitsNothing) {
  FileTree tree;
  fillRoot(tree, {file(10)});
  for (const auto& [width, height] : {std::pair{0, 50}, {50, 0}, {-3, 50}}) {
    const RenderedTreemap map = draw(tree, width, height);
    EXPECT_TRUE(map.blocks.empty());
    EXPECT_TRUE(map.pixels.empty());
    EXPECT_EQ(map.width, width);
    EXPECT_EQ(map.blockUnder(0, 0), nullptr);
    EXPECT_EQ(map.outlineRect(kRootNode), nullptr);
  }
}

TEST(TreemapRender, OfANodeThatIsNotPublishedIsEmptyEvenIntoAUsedRender) {
  FileTree tree;
  fillRoot(tree, {file(10)});
  const ExtraBlock extra = {kFreeSpaceBlock, "Free space", 10, 1};
  RenderedTreemap map = draw(tree, 40, 40, {extra});
  map = renderTreemap(tree, 2, 40, 40, kColours, {}, kLengths, std::move(map));
  EXPECT_TRUE(map.blocks.empty());
  EXPECT_TRUE(map.pixels.empty());
  EXPECT_TRUE(map.extraColours.empty());
  EXPECT_EQ(map.blockUnder(5, 5), nullptr);
  EXPECT_EQ(map.outlineRect(kRootNode), nullptr);
}

TEST(TreemapRender, HitsTheBlockWhosePixelItIs) {
  FileTree tree;
  fillRoot(tree, {file(300, kPdfKind), file(100, kJpegKind)});
  const RenderedTreemap map = draw(tree, 40, 20);
  ASSERT_NE(map.blockUnder(0, 19), nullptr);
  EXPECT_EQ(map.blockUnder(0, 19)->id, 1);
  EXPECT_EQ(map.blockUnder(29, 0)->id, 1);
  EXPECT_EQ(map.blockUnder(30, 0)->id, 2);
  EXPECT_EQ(map.blockUnder(39, 19)->id, 2);
  EXPECT_EQ(map.blockUnder(40, 0), nullptr);
  EXPECT_EQ(map.blockUnder(0, 20), nullptr);
  EXPECT_EQ(map.blockUnder(-1, 0), nullptr);
  EXPECT_EQ(map.blockUnder(0, -1), nullptr);
}

TEST(TreemapRender, HitsRestAndExtraBlocks) {
  FileTree tree;
  std::vector<test::MapEntry> entries(50, file(1));
  entries.insert(entries.begin(), file(4000));
  fillRoot(tree, entries);
  const RenderedTreemap map = draw(tree, 30, 30, {{kFreeSpaceBlock, "Free space", 1000, 0x2B3648}});
  ASSERT_NE(map.blockUnder(29, 29), nullptr);
  EXPECT_EQ(map.blockUnder(29, 29)->id, 2);  // the first of those merged
  EXPECT_EQ(map.blockUnder(29, 29)->restCount, 50);
  ASSERT_NE(map.blockUnder(29, 0), nullptr);
  EXPECT_EQ(map.blockUnder(29, 0)->id, -2);
  EXPECT_EQ(map.blockUnder(29, 0)->restCount, 0);
}

TEST(TreemapRender, ColoursAFolderAtTheDepthLimitByWhatFillsIt) {
  FileTree tree;
  tree.createRoot("/map");
  NodeId node = kRootNode;
  for (int level = 1; level <= 65; ++level) node = fill(tree, node, {folder()}).front();
  fill(tree, node, {file(9, kPdfKind)});
  const RenderedTreemap map = draw(tree, 50, 40);
  ASSERT_EQ(map.blocks.back().reason, BlockReason::depthLimit);
  EXPECT_EQ(map.blocks.back().kind, kPdfKind);
  EXPECT_EQ(std::ranges::count(map.blocks, false, &PictureBlock::painted), kDepthLimit);
}

TEST(TreemapRender, OutlinesAFolderAroundItsContents) {
  FileTree tree;
  const std::vector<NodeId> folders = fillRoot(tree, {folder(), file(100, kPdfKind)});
  fill(tree, folders[0], {file(150, kJpegKind), file(150, kJpegKind)});
  const RenderedTreemap map = draw(tree, 40, 20);
  ASSERT_NE(map.outlineRect(folders[0]), nullptr);
  EXPECT_EQ(*map.outlineRect(folders[0]), (PixelSpan{0, 0, 30, 20}));
  EXPECT_EQ(*map.outlineRect(kRootNode), (PixelSpan{0, 0, 40, 20}));
  for (int x = 0; x < 30; ++x) EXPECT_GE(map.blockUnder(x, 10)->id, 3) << x;
  EXPECT_EQ(map.outlineRect(77), nullptr);
}

TEST(TreemapRender, GivesRestAndExtraBlocksNoOutline) {
  FileTree tree;
  std::vector<test::MapEntry> entries(50, file(1));
  entries.push_back(file(4000));
  fillRoot(tree, entries);
  const RenderedTreemap map = draw(tree, 30, 30, {{kFreeSpaceBlock, "Free space", 1000, 0x2B3648}});
  ASSERT_EQ(map.blocks.back().reason, BlockReason::rest);
  EXPECT_EQ(map.blocks.back().id, 1);
  EXPECT_EQ(map.outlineRect(1), nullptr);
  EXPECT_EQ(map.outlineRect(static_cast<NodeId>(kFreeSpaceBlock)), nullptr);
  EXPECT_EQ(map.outlineRects.size(), 2U);  // the root and the large file
}

TEST(TreemapRender, ColoursExtraBlocksAsTheyAsk) {
  FileTree tree;
  fillRoot(tree, {file(1, kPdfKind)});
  const std::vector<ExtraBlock> blocks = {{kFreeSpaceBlock, "Free space", 1000000, 0x2B3648},
                                          {kOtherSpaceBlock, "Other space in use", 0, 0x4A4458}};
  const RenderedTreemap map = draw(tree, 60, 30, blocks);
  ASSERT_EQ(map.blocks.size(), 2U);
  EXPECT_EQ(map.blocks[1].id, kFreeSpaceBlock);
  expectAsDrawnNaively(map, test::drawNaively(tree, kRootNode, 60, 30, kColours, blocks, kLengths));
  ASSERT_EQ(map.extraColours.count(kOtherSpaceBlock), 1U);
  EXPECT_EQ(map.extraColours.at(kFreeSpaceBlock).label, "Free space");
}

TEST(OutlineRects, KeepTheLargestBlockOfANodeAndTheFirstOfEqualOnes) {
  std::vector<PictureBlock> blocks(4);
  blocks[0] = {.rect = {0, 0, 2, 2}, .id = 9};
  blocks[1] = {.rect = {0, 0, 3, 3}, .id = 9};
  blocks[2] = {.rect = {5, 5, 14, 6}, .id = 9};
  blocks[3] = {.rect = {0, 0, 99, 99}, .id = 9, .restCount = 4};
  OutlineRects rects;
  rects.assign(blocks, 1);
  EXPECT_EQ(rects.blockOf(9, blocks), 1U);
  EXPECT_EQ(rects.size(), 3U);
  EXPECT_EQ(rects.blockOf(8, blocks), std::nullopt);
  EXPECT_EQ(rects.blockOf(10, blocks), std::nullopt);
}

TEST(OutlineRects, FindEveryNodeHoweverTheIndicesLie) {
  std::mt19937_64 random(3);
  for (const std::uint32_t step : {1U, 2U, 8U, 64U, 4096U, 65537U}) {
    std::vector<PictureBlock> blocks(150000);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      blocks[i].id = static_cast<std::int32_t>((i * step) & 0x7FFFFFFF);
    }
    std::shuffle(blocks.begin(), blocks.end(), random);
    OutlineRects rects;
    rects.assign(blocks, 3);
    ASSERT_EQ(rects.size(), blocks.size());
    for (const PictureBlock& block : blocks) {
      const auto found = rects.blockOf(static_cast<NodeId>(block.id), blocks);
      ASSERT_TRUE(found);
      ASSERT_EQ(blocks[*found].id, block.id);
    }
    EXPECT_EQ(rects.blockOf(0x80000000, blocks), std::nullopt);
    EXPECT_EQ(rects.blockOf(0xFFFFFFFF, blocks), std::nullopt);
  }
}

}  // namespace
}  // namespace app
