// Maps whose parts are painted while others are laid out.

#include "app/map/early_shading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "app/map/treemap_render.h"
#include "tests/app/map/map_tree.h"
#include "tests/app/map/naive_map.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using test::MapEntry;

constexpr MeasureSettings kByLength;

std::uint64_t randomSize(std::mt19937_64& random) { return 1000 + random() % 100000; }
std::uint64_t equalSize(std::mt19937_64&) { return 4096; }
/// Sums of these are rounded, or too large for any number that a folder's size is kept in.
std::uint64_t hugeSize(std::mt19937_64& random) {
  return (std::uint64_t{1} << (50 + random() % 13)) + random() % 4096;
}

template <typename Size>
void fillWith(Size size, FileTree* tree, std::size_t folders = 128, int filesInFolder = 256) {
  std::mt19937_64 random(31);
  for (const sizewalk::NodeId folder :
       test::fillRoot(*tree, std::vector<MapEntry>(folders, test::folder()))) {
    std::vector<MapEntry> files;
    for (int i = 0; i < filesInFolder; ++i) files.push_back(test::file(size(random)));
    test::fill(*tree, folder, files);
  }
}

void expectDrawnAsNaively(const FileTree& tree, std::int32_t width, std::int32_t height) {
  const KindColours colours(true);
  const test::NaiveMap naive =
      test::drawNaively(tree, kRootNode, width, height, colours, {}, kByLength);
  for (const unsigned threads : {1U, 2U, 5U}) {
    const RenderedTreemap map =
        renderTreemap(tree, kRootNode, width, height, colours, {}, kByLength, {}, threads);
    ASSERT_EQ(map.blocks.size(), naive.blocks.size());
    ASSERT_TRUE(map.pixels == naive.pixels) << threads;
    ASSERT_TRUE(map.blockAt == naive.blockAt) << threads;
  }
}

/// Which painted blocks have a pixel that another one has too.
std::vector<bool> sharingBlocks(const std::vector<TreemapBlock>& blocks, std::int32_t width,
                                std::int32_t height) {
  std::vector<bool> sharing(blocks.size());
  std::vector<std::uint32_t> last(
      static_cast<std::size_t>(width) * static_cast<std::size_t>(height), kNoBlock);
  for (std::uint32_t i = 0; i < blocks.size(); ++i) {
    if (!blocks[i].painted) continue;
    const PixelSpan span = pixelSpan(blocks[i].rect, width, height);
    for (std::size_t y = span.top; y < span.bottom; ++y) {
      for (std::size_t x = span.left; x < span.right; ++x) {
        std::uint32_t& there = last[y * static_cast<std::size_t>(width) + x];
        if (there != kNoBlock) sharing[there] = sharing[i] = true;
        there = i;
      }
    }
  }
  return sharing;
}

TEST(EarlyShading, DrawsFilesOfManySizesAsTheyAreDrawnNaively) {
  FileTree tree;
  fillWith(randomSize, &tree);
  expectDrawnAsNaively(tree, 811, 603);
}

TEST(EarlyShading, DrawsHugeFilesAsTheyAreDrawnNaively) {
  FileTree tree;
  fillWith(hugeSize, &tree);
  expectDrawnAsNaively(tree, 811, 603);
}

/// Half of the edges lie at the centres of pixels.
TEST(EarlyShading, DrawsFilesOfOneSizeAsTheyAreDrawnNaively) {
  FileTree tree;
  fillWith(equalSize, &tree);
  expectDrawnAsNaively(tree, 384, 192);
  expectDrawnAsNaively(tree, 576, 576);
}

TEST(EarlyShading, DrawsAHugeFolderAsItIsDrawnNaively) {
  FileTree tree;
  std::mt19937_64 random(32);
  std::vector<MapEntry> files;
  for (int i = 0; i < 70000; ++i) files.push_back(test::file(randomSize(random)));
  files.push_back(test::folder());
  test::fill(tree, test::fillRoot(tree, files).front(), {test::file(500000)});
  expectDrawnAsNaively(tree, 811, 603);
}

TEST(EarlyShading, KnowsOfEveryBlockThatSharesAPixel) {
  std::mt19937_64 random(33);
  std::size_t shared = 0;
  for (int round = 0; round < 200; ++round) {
    FileTree tree;
    fillWith(round % 2 == 0 ? equalSize : hugeSize, &tree, 3 + random() % 28,
             3 + static_cast<int>(random() % 100));
    const auto width = static_cast<std::int32_t>(30 + random() % 300);
    const auto height = static_cast<std::int32_t>(30 + random() % 300);
    std::vector<TreemapBlock> blocks;
    layoutTreemap(tree, kRootNode, {0, 0, double(width), double(height)}, 0, kByLength, {}, {},
                  kRidgeHeight, &blocks);
    const std::vector<bool> sharing = sharingBlocks(blocks, width, height);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      ASSERT_TRUE(!sharing[i] || maySharePixels(blocks[i].rect)) << round << ": block " << i;
    }
    shared += static_cast<std::size_t>(std::ranges::count(sharing, true));
  }
  EXPECT_GT(shared, 0U);
}

TEST(EarlyShading, LeavesFewBlocksOfManySizesForLater) {
  FileTree tree;
  fillWith(randomSize, &tree);
  std::vector<TreemapBlock> blocks;
  layoutTreemap(tree, kRootNode, {0, 0, 811, 603}, 0, kByLength, {}, {}, kRidgeHeight, &blocks);
  const auto late = std::ranges::count_if(
      blocks, [](const TreemapBlock& block) { return maySharePixels(block.rect); });
  EXPECT_LT(late, static_cast<std::ptrdiff_t>(blocks.size() / 20));
}

}  // namespace
}  // namespace app
