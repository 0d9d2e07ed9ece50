// A layout in parts is that of the whole, block by block and bit by bit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "app/map/treemap_layout.h"
#include "app/model/parallel.h"
#include "tests/app/map/map_tree.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;

struct Scene {
  const FileTree& tree;
  NodeId focus = kRootNode;
  MapRect rect{0, 0, 800, 600};
  MeasureSettings measure = {};
  std::vector<ExtraBlock> extraBlocks = {};
};

struct Layout {
  std::vector<TreemapBlock> blocks;
  std::vector<RestSum> rests;
};

Layout layOutWhole(const Scene& scene) {
  Layout whole;
  layoutTreemap(scene.tree, scene.focus, scene.rect, 0, scene.measure, scene.extraBlocks, {},
                kRidgeHeight, &whole.blocks, &whole.rests);
  return whole;
}

/// On three threads.
Layout layOutInParts(const Scene& scene, std::size_t mostInPart, std::size_t* count = nullptr) {
  const LayoutParts parts(scene.tree, scene.focus, scene.rect, scene.measure, scene.extraBlocks,
                          mostInPart);
  if (count) *count = parts.count();
  std::vector<Layout> laidOut(parts.count());
  forEachOnThreads(parts.count(), 3, [&](std::size_t part) {
    parts.layOut(part, &laidOut[part].blocks, &laidOut[part].rests);
  });
  Layout joined;
  for (const Layout& part : laidOut) {
    joined.blocks.insert(joined.blocks.end(), part.blocks.begin(), part.blocks.end());
    joined.rests.insert(joined.rests.end(), part.rests.begin(), part.rests.end());
  }
  return joined;
}

void expectSame(const Layout& parts, const Layout& whole) {
  ASSERT_EQ(parts.blocks.size(), whole.blocks.size());
  for (std::size_t i = 0; i < whole.blocks.size(); ++i) {
    ASSERT_EQ(parts.blocks[i], whole.blocks[i]) << "block " << i;
  }
  ASSERT_EQ(parts.rests.size(), whole.rests.size());
  for (std::size_t i = 0; i < whole.rests.size(); ++i) {
    ASSERT_EQ(parts.rests[i].id, whole.rests[i].id);
    ASSERT_EQ(parts.rests[i].size, whole.rests[i].size);
  }
}

/// Returns the most parts that it was divided into.
std::size_t expectPartsAreTheWhole(const Scene& scene) {
  const Layout whole = layOutWhole(scene);
  std::size_t most = 0;
  for (const std::size_t mostInPart : {1U, 10U, 300U, 8192U}) {
    SCOPED_TRACE("parts of " + std::to_string(mostInPart));
    std::size_t count = 0;
    const Layout parts = layOutInParts(scene, mostInPart, &count);
    expectSame(parts, whole);
    most = std::max(most, count);
    if (testing::Test::HasFatalFailure()) break;
  }
  return most;
}

std::vector<ExtraBlock> someExtraBlocks(std::mt19937_64& random) {
  std::vector<ExtraBlock> blocks;
  if (random() % 2 == 0) blocks.push_back({kFreeSpaceBlock, "Free", std::int64_t{1} << 40, 1});
  if (random() % 2 == 0) blocks.push_back({kOtherSpaceBlock, "Other", 12345, 2});
  return blocks;
}

/// Their entries are empty or as large as 2^57, many are taken out, and some folders lie deep.
TEST(LayoutParts, AreTheWholeOfRandomTrees) {
  std::mt19937_64 random(71);
  std::size_t divided = 0;
  for (int round = 0; round < 80; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    FileTree tree(test::mapTreeOptions());
    test::fillRandomly(tree, 20 + random() % 5000, random);
    const auto side = [&] { return static_cast<double>(random() % (round % 6 == 0 ? 20 : 1500)); };
    const MapRect rect = {0, 0, side(), side()};
    const auto focus = static_cast<NodeId>(random() % 4 == 0 ? random() % tree.nodeCount() : 0);
    const MeasureSettings measure = {static_cast<Measure>(random() % 4), random() % 2 == 0};
    const std::size_t parts =
        expectPartsAreTheWhole({tree, focus, rect, measure, someExtraBlocks(random)});
    if (HasFatalFailure()) return;
    divided += parts > 4 ? 1 : 0;
  }
  EXPECT_GT(divided, 20U);
}

TEST(LayoutParts, AreTheWholeOfAChainOfFiveThousandFolders) {
  FileTree tree;
  tree.createRoot("/map");
  NodeId node = kRootNode;
  for (int level = 0; level < 5000; ++level) {
    node = test::fill(tree, node, {test::file(10), test::folder(), test::file(20)}).front();
  }
  expectPartsAreTheWhole({tree});
  expectPartsAreTheWhole({.tree = tree, .focus = node - 3000});
}

TEST(LayoutParts, AreTheWholeOfAMillionEntriesInOneFolder) {
  std::mt19937_64 random(72);
  std::vector<test::MapEntry> entries;
  for (int i = 0; i < 1000000; ++i) {
    entries.push_back(test::file(random() % 1000, static_cast<std::uint16_t>(2 + random() % 20)));
  }
  FileTree tree;
  const NodeId folder = test::fillRoot(tree, {test::folder(), test::file(1000)}).front();
  test::fill(tree, folder, entries);
  for (const NodeId focus : {kRootNode, folder}) {
    const Scene scene = {.tree = tree, .focus = focus};
    expectSame(layOutInParts(scene, 8192), layOutWhole(scene));
  }
}

TEST(LayoutParts, AreTheWholeWhereSizesAreBeyondWhatANumberOfTheirArithmeticHolds) {
  std::mt19937_64 random(73);
  FileTree tree;
  std::vector<test::MapEntry> top(40, test::folder());
  top.push_back(test::file((std::uint64_t{1} << 61) + 1));
  for (const NodeId folder : test::fillRoot(tree, top)) {
    std::vector<test::MapEntry> entries;
    for (int i = 0; i < 50; ++i) {
      entries.push_back(test::file((std::uint64_t{1} << 50) + random() % 1000));
      entries.push_back(test::file((std::uint64_t{1} << 49) * (random() % 8) + 1));
    }
    test::fill(tree, folder, entries);
  }
  EXPECT_GT(expectPartsAreTheWhole({tree}), 30U);
}

TEST(LayoutParts, AreOneWhereNothingHasASize) {
  FileTree tree;
  const std::vector<test::MapEntry> nothing(3000, test::file(0));
  std::vector<test::MapEntry> top = nothing;
  top.push_back(test::folder());
  test::fill(tree, test::fillRoot(tree, top).front(), nothing);
  expectPartsAreTheWhole({tree});
  const Layout layout = layOutInParts({tree}, 10);
  ASSERT_EQ(layout.blocks.size(), 1U);
  EXPECT_EQ(layout.blocks[0].reason, BlockReason::nothingVisible);
}

/// Each of them is laid out in one go, and none waits for another.
TEST(LayoutParts, AreAboutAsLargeAsTheyWereAskedFor) {
  FileTree tree;
  const std::vector<test::MapEntry> files(50, test::file(1000));
  for (const NodeId folder : test::fillRoot(tree, std::vector(100, test::folder()))) {
    test::fill(tree, folder, files);
  }
  const MeasureSettings measure;
  const LayoutParts parts(tree, kRootNode, {0, 0, 1000, 1000}, measure, {}, 500);
  EXPECT_GE(parts.count(), 8U);
  std::size_t blocks = 0;
  for (std::size_t part = 0; part < parts.count(); ++part) {
    std::vector<TreemapBlock> out;
    std::vector<RestSum> rests;
    parts.layOut(part, &out, &rests);
    EXPECT_LE(out.size(), 600U);
    EXPECT_NEAR(static_cast<double>(parts.blocksIn(part)), static_cast<double>(out.size()), 30);
    blocks += out.size();
  }
  EXPECT_EQ(blocks, 1U + 100 + 5000);
}

}  // namespace
}  // namespace app
