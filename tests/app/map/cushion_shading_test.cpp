// Whole maps, by several threads.

#include "app/map/cushion_shading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <stop_token>
#include <vector>

#include "app/model/parallel.h"
#include "tests/app/map/naive_map.h"
#include "tests/app/map/random_blocks.h"

namespace app {
namespace {

using test::blockOf;
using test::randomCushion;
using test::uniform;

/// The whole image: background, and all blocks over it. They come in two sequences.
void shade(const std::vector<TreemapBlock>& blocks, const std::vector<std::uint32_t>& colours,
           const MapImage& image, unsigned threads, const std::stop_token& stop = {}) {
  const std::size_t split = blocks.size() / 3;
  const std::span all(blocks);
  std::vector<RunRows> firstRows(runCount(split));
  std::vector<RunRows> secondRows(runCount(blocks.size() - split));
  findRunRows(all.first(split), firstRows);
  findRunRows(all.subspan(split), secondRows);
  const std::array<BlockSequence, 2> sequences = {{
      {all.first(split), std::span(colours).first(split), firstRows, 0},
      {all.subspan(split), std::span(colours).subspan(split), secondRows,
       static_cast<std::uint32_t>(split)},
  }};
  clearImage(image, threads);
  shadeBlocks(sequences, image, threads, stop);
}

TEST(ShadeBlocks, PaintsLaterBlocksOverEarlierOnesOnAnyNumberOfThreads) {
  std::mt19937_64 random(14);
  const int width = 700;
  const int height = 640;
  std::vector<TreemapBlock> blocks;
  std::vector<std::uint32_t> colours;
  for (int i = 0; i < 3000; ++i) {
    const MapRect rect = {uniform(random, -20, width), uniform(random, -20, height),
                          uniform(random, 0, i % 50 == 0 ? 400 : 9),
                          uniform(random, 0, i % 50 == 1 ? 400 : 9)};
    blocks.push_back(blockOf(rect, randomCushion(random, rect)));
    blocks.back().painted = i % 7 != 0;
    colours.push_back(static_cast<std::uint32_t>(random()));
  }
  const std::size_t size = std::size_t{width} * height;
  std::vector<std::uint32_t> expectedPixels(size, 0x1C1C1E);
  std::vector<std::uint32_t> expectedBlockAt(size, 0xFFFFFFFF);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (!blocks[i].painted) continue;
    test::shadeNaively(blocks[i], colours[i], static_cast<std::uint32_t>(i), &expectedPixels,
                       &expectedBlockAt, width, height);
  }
  for (const unsigned threads : {0U, 1U, 2U, 3U, 8U}) {
    std::vector<std::uint32_t> pixels(size, 1);
    std::vector<std::uint32_t> blockAt(size, 2);
    shade(blocks, colours, {pixels.data(), blockAt.data(), width, height}, threads);
    EXPECT_TRUE(pixels == expectedPixels) << threads;
    EXPECT_TRUE(blockAt == expectedBlockAt) << threads;
  }
}

TEST(ShadeBlocks, KeepsWhatLiesAtTheTopOverABlockThatReachesTheBottom) {
  const int width = 700;
  const int height = 640;
  std::vector<TreemapBlock> blocks(1, blockOf({0, 0, width, height}));
  for (int i = 0; i < 2000; ++i) {
    blocks.push_back(blockOf({static_cast<double>(i % 200), static_cast<double>(i / 200), 1, 1}));
  }
  // Blocks of one run stand together, so fill the first with copies of the large one.
  blocks.insert(blocks.begin(), 200, blocks.front());
  const std::vector<std::uint32_t> colours(blocks.size(), 0xFFFFFF);
  std::vector<std::uint32_t> pixels(std::size_t{width} * height);
  std::vector<std::uint32_t> blockAt(pixels.size());
  shade(blocks, colours, {pixels.data(), blockAt.data(), width, height}, 2);
  EXPECT_EQ(blockAt[0], 201U);
  EXPECT_EQ(blockAt[9 * width + 199], 2200U);
  EXPECT_EQ(blockAt[200], 200U);
  EXPECT_EQ(blockAt.back(), 200U);
}

TEST(ShadeBlocks, PaintsNothingOnceItIsGivenUp) {
  constexpr int kSide = 800;  // worth more than one thread
  std::vector<std::uint32_t> pixels(kSide * kSide, 0);
  std::vector<std::uint32_t> blockAt = pixels;
  const MapImage image = {pixels.data(), blockAt.data(), kSide, kSide};
  const std::vector<TreemapBlock> blocks(300, blockOf({0, 0, kSide, kSide}));
  const std::vector<std::uint32_t> colours(blocks.size(), 0xFFFFFF);
  std::stop_source stop;
  stop.request_stop();
  for (const unsigned threads : {1U, 4U}) {
    EXPECT_THROW(shade(blocks, colours, image, threads, stop.get_token()), GivenUp);
    EXPECT_EQ(std::ranges::count(pixels, kMapBackground), kSide * kSide);
    EXPECT_THROW(clearImage(image, threads, stop.get_token()), GivenUp);
  }
}

/// Enough of them for the kernel's rare pixels, those that the error bound leaves open, to turn up.
TEST(ShadeBlocks, PaintsTinyBlocksSideBySideAsDefined) {
  std::mt19937_64 random(15);
  const int width = 640;
  const int height = 480;
  std::vector<TreemapBlock> blocks;
  std::vector<std::uint32_t> colours;
  for (int y = 0; y < height; y += 2) {
    for (int x = 0; x < width; x += 2) {
      const MapRect rect = {uniform(random, x - 0.4, x + 0.4), uniform(random, y - 0.4, y + 0.4),
                            uniform(random, 0.2, 2), uniform(random, 0.2, 2)};
      blocks.push_back(blockOf(rect, randomCushion(random, rect)));
      colours.push_back(static_cast<std::uint32_t>(random()));
    }
  }
  const std::size_t size = std::size_t{width} * height;
  std::vector<std::uint32_t> expectedPixels(size, kMapBackground);
  std::vector<std::uint32_t> expectedBlockAt(size, kNoBlock);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    test::shadeNaively(blocks[i], colours[i], static_cast<std::uint32_t>(i), &expectedPixels,
                       &expectedBlockAt, width, height);
  }
  std::vector<std::uint32_t> pixels(size);
  std::vector<std::uint32_t> blockAt(size);
  shade(blocks, colours, {pixels.data(), blockAt.data(), width, height}, 2);
  EXPECT_TRUE(pixels == expectedPixels);
  EXPECT_TRUE(blockAt == expectedBlockAt);
}

}  // namespace
}  // namespace app
