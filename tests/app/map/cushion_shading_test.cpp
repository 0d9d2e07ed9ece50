#include "app/map/cushion_shading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tests/app/map/naive_map.h"

namespace app {
namespace {

constexpr int kWidth = 61;
constexpr int kHeight = 43;

/// An image with values before and behind it that nobody may write to.
class GuardedImage {
 public:
  GuardedImage(std::size_t size, std::uint32_t ground) : values_(size + 2 * kGuard, kUntouched) {
    std::fill_n(data(), size, ground);
  }

  std::uint32_t* data() { return values_.data() + kGuard; }
  std::uint32_t operator[](std::size_t i) const { return values_[kGuard + i]; }

  /// Whether this is the image, with nothing written beside it.
  bool holdsJust(const std::vector<std::uint32_t>& image) const {
    std::vector<std::uint32_t> guarded(kGuard, kUntouched);
    guarded.insert(guarded.end(), image.begin(), image.end());
    guarded.insert(guarded.end(), kGuard, kUntouched);
    return values_ == guarded;
  }

 private:
  /// A row of the widest image, and several of the longest vectors.
  static constexpr std::size_t kGuard = 64;
  static_assert(kGuard >= kWidth);
  static constexpr std::uint32_t kUntouched = 0xABADCAFE;

  std::vector<std::uint32_t> values_;
};

/// The two images that a block is painted into.
struct Canvas {
  explicit Canvas(int imageWidth = kWidth, int imageHeight = kHeight)
      : width(imageWidth),
        height(imageHeight),
        pixels(size(), kMapBackground),
        blockAt(size(), kNoBlock) {}

  std::size_t size() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  bool isEmpty() const {
    return pixels.holdsJust(std::vector<std::uint32_t>(size(), kMapBackground)) &&
           blockAt.holdsJust(std::vector<std::uint32_t>(size(), kNoBlock));
  }

  int width;
  int height;
  GuardedImage pixels;
  GuardedImage blockAt;
};

void shadeOn(Canvas* canvas, const TreemapBlock& block, std::uint32_t colour,
             std::uint32_t blockIndex) {
  shadeBlock(block, colour, blockIndex, canvas->pixels.data(), canvas->blockAt.data(),
             canvas->width, canvas->height);
}

std::vector<RunRows> rowsOf(const std::vector<TreemapBlock>& blocks) {
  std::vector<RunRows> rows(runCount(blocks.size()));
  findRunRows(blocks, rows);
  return rows;
}

TreemapBlock blockOf(const MapRect& rect, const CushionCoefficients& cushion = {}) {
  TreemapBlock block;
  block.rect = rect;
  block.cushion = cushion;
  return block;
}

double uniform(std::mt19937_64& random, double from, double to) {
  return std::uniform_real_distribution<double>(from, to)(random);
}

/// An edge in, at and beyond the image, often on a half pixel.
double randomEdge(std::mt19937_64& random, double extent) {
  const double edge = uniform(random, -0.3 * extent, 1.3 * extent);
  switch (random() % 4) {
    case 0:
      return std::floor(edge) + 0.5;
    case 1:
      return std::floor(edge);
    case 2:
      return std::nextafter(std::floor(edge) + 0.5, random() % 2 == 0 ? -1e9 : 1e9);
    default:
      return edge;
  }
}

MapRect randomRect(std::mt19937_64& random) {
  const double x = randomEdge(random, kWidth);
  const double y = randomEdge(random, kHeight);
  const bool small = random() % 2 == 0;
  return {x, y, small ? uniform(random, 0, 5) : std::abs(randomEdge(random, kWidth) - x),
          small ? uniform(random, 0, 5) : std::abs(randomEdge(random, kHeight) - y)};
}

CushionCoefficients randomCushion(std::mt19937_64& random, const MapRect& rect) {
  CushionCoefficients cushion;
  switch (random() % 4) {
    case 0:  // as the layout makes them
      for (int level = 0; level < 5; ++level) addRidge(rect, uniform(random, 0, 0.4), &cushion);
      break;
    case 1: {  // flat up to steep
      const double scale = std::pow(10, uniform(random, -6, 3));
      cushion = {uniform(random, -scale, scale), uniform(random, -scale, scale),
                 uniform(random, -scale, scale), uniform(random, -scale, scale)};
      break;
    }
    case 2:  // towards the light, where the factor is about 1
      cushion = {uniform(random, -0.001, 0.001), uniform(random, -0.001, 0.001),
                 uniform(random, 0, 0.6), uniform(random, 0, 0.6)};
      break;
    default:  // at the edge of the shadow, where the cosine is about 0
      cushion = {uniform(random, -1e-4, 1e-4), uniform(random, -1e-4, 1e-4), -4, 0};
      cushion.linearX += uniform(random, -0.01, 0.01);
      break;
  }
  return cushion;
}

/// One block painted into an image of its own.
class ShadeBlock : public testing::Test {
 protected:
  void expectShadedAsDefined(const TreemapBlock& block, std::uint32_t colour, int width = kWidth,
                             int height = kHeight) {
    Canvas canvas(width, height);
    std::vector<std::uint32_t> pixels(canvas.size(), kMapBackground);
    std::vector<std::uint32_t> blockAt(canvas.size(), kNoBlock);
    test::shadeNaively(block, colour, 77, &pixels, &blockAt, width, height);
    shadeOn(&canvas, block, colour, 77);
    ASSERT_TRUE(canvas.pixels.holdsJust(pixels));
    ASSERT_TRUE(canvas.blockAt.holdsJust(blockAt));
  }

  /// Blocks of every size that fits in, in the corners and a pixel across them.
  void expectEverySizeShadedAsDefined(int imageWidth, int imageHeight) {
    for (int width = 1; width <= imageWidth; ++width) {
      for (int height = 1; height <= imageHeight; ++height) {
        for (const int x : {-1, 0, imageWidth - width, imageWidth - width + 1}) {
          for (const int y : {-1, 0, imageHeight - height, imageHeight - height + 1}) {
            const MapRect rect = {static_cast<double>(x), static_cast<double>(y),
                                  static_cast<double>(width), static_cast<double>(height)};
            expectShadedAsDefined(blockOf(rect, randomCushion(random_, rect)), 0x64FA7D, imageWidth,
                                  imageHeight);
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  }

  std::mt19937_64 random_{16};
};

TEST_F(ShadeBlock, IsAsDefinedOnRandomBlocks) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 40000; ++i) {
    const MapRect rect = randomRect(random);
    const auto colour = static_cast<std::uint32_t>(random());
    expectShadedAsDefined(blockOf(rect, randomCushion(random, rect)), colour);
    if (HasFatalFailure()) FAIL() << "block " << i;
  }
}

TEST_F(ShadeBlock, IsAsDefinedAtEveryWidthAndPlace) {
  std::mt19937_64 random(12);
  for (int width = 0; width <= 36; ++width) {
    for (int height = 0; height <= 9; ++height) {
      for (const double x : {0.0, 1.0, 5.0, static_cast<double>(kWidth - width)}) {
        for (const double y : {0.0, 3.0, static_cast<double>(kHeight - height)}) {
          const MapRect rect = {x, y, static_cast<double>(width), static_cast<double>(height)};
          expectShadedAsDefined(blockOf(rect, randomCushion(random, rect)), 0x64FA7D);
          if (HasFatalFailure()) FAIL() << width << " x " << height;
        }
      }
    }
  }
}

/// The rows of such an image end within a vector, and before and behind it lies the guard.
TEST_F(ShadeBlock, IsAsDefinedInSmallImages) {
  for (int width = 1; width <= 17; ++width) {
    for (int height = 1; height <= 5; ++height) {
      expectEverySizeShadedAsDefined(width, height);
      if (HasFatalFailure()) FAIL() << width << " x " << height;
    }
  }
}

TEST_F(ShadeBlock, IsAsDefinedForExtremeCoefficients) {
  const double huge = std::numeric_limits<double>::max();
  const double infinite = std::numeric_limits<double>::infinity();
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  const double values[] = {0,    -0.0, 1e-320, 1e-30, 1,     -4,       9.99e8,    1e9,
                           -1e9, 1e15, -1e19,  1e38,  -huge, infinite, notANumber};
  for (const double a : values) {
    for (const double b : values) {
      for (const CushionCoefficients& cushion :
           {CushionCoefficients{a, 0, b, 0}, CushionCoefficients{0, a, 0, b},
            CushionCoefficients{a, b, 0, 0}, CushionCoefficients{0, 0, a, b}}) {
        for (const MapRect& rect : {MapRect{1, 1, 3, 2}, MapRect{20, 20, 37, 3}}) {
          expectShadedAsDefined(blockOf(rect, cushion), 0xFF7D01);
          if (HasFatalFailure()) FAIL() << a << ", " << b;
        }
      }
    }
  }
}

TEST_F(ShadeBlock, IsAsDefinedForEveryChannelValue) {
  std::mt19937_64 random(13);
  for (std::uint32_t value = 0; value < 256; ++value) {
    for (int i = 0; i < 4; ++i) {
      const MapRect rect = {2, 2, 32, 5};
      const std::uint32_t colour = value << 16 | (255 - value) << 8 | (value ^ 0x55);
      expectShadedAsDefined(blockOf(rect, randomCushion(random, rect)), colour);
      if (HasFatalFailure()) FAIL() << value;
    }
  }
}

TEST_F(ShadeBlock, RoundsEdgesHalfAwayFromZero) {
  for (const auto& [edge, first] :
       {std::pair{2.5, 3}, {0.49999999999999994, 0}, {0.5, 1}, {-0.5, 0}}) {
    Canvas canvas;
    shadeOn(&canvas, blockOf({edge, 0, 10.5 - edge, 1}), 0xFFFFFF, 5);
    for (int x = 0; x < kWidth; ++x) {
      EXPECT_EQ(canvas.blockAt[static_cast<std::size_t>(x)], x >= first && x < 11 ? 5 : kNoBlock)
          << edge << " at " << x;
    }
  }
}

TEST_F(ShadeBlock, DrawsNothingWhenItRoundsAwayOrLiesOutside) {
  for (const MapRect& rect :
       {MapRect{3.5, 3, 0.9, 9}, MapRect{3, 4.6, 9, 0.8}, MapRect{-9, 0, 9.4, 9},
        MapRect{kWidth - 0.5, 0, 9, 9}, MapRect{0, kHeight, 9, 9}, MapRect{1e300, 0, 9, 9},
        MapRect{-1e300, 0, 9, 9}, MapRect{9, 9, -4, 4}}) {
    Canvas canvas;
    shadeOn(&canvas, blockOf(rect), 0xFFFFFF, 0);
    EXPECT_TRUE(canvas.isEmpty()) << rect.x;
  }
}

TEST_F(ShadeBlock, LeavesExactlyThePartInShadowOfEachChannel) {
  for (const std::uint32_t channel : {0U, 1U, 5U, 124U, 125U, 126U, 250U, 255U}) {
    Canvas canvas;
    shadeOn(&canvas, blockOf({0, 0, 20, 4}, {0, 0, -9, -9}), channel * 0x010101, 0);
    const auto left = static_cast<std::uint32_t>(channel * 0.208);
    EXPECT_EQ(canvas.pixels[0], left * 0x010101) << channel;
  }
}

TEST_F(ShadeBlock, ShowsTheColourItselfWhereItIsBrightest) {
  Canvas canvas;
  // Square to the light: the cosine is 1 and the factor past it.
  shadeOn(&canvas, blockOf({0, 0, 20, 4}, {0, 0, 0.25, 0.25}), 0xFFFE7F01, 0);
  EXPECT_EQ(canvas.pixels[0], 0xFE7F01U);
  EXPECT_EQ(canvas.pixels[19], 0xFE7F01U);
}

TEST_F(ShadeBlock, LiesFlatAtNineteenTwentiethsOfTheColour) {
  Canvas canvas;
  shadeOn(&canvas, blockOf({0, 0, 3, 3}), 0xFF8040, 0);
  EXPECT_EQ(canvas.pixels[0], 0xFD7F3FU);  // (0.8 * 4/sqrt(18) + 0.2) * 1.04 = 0.99241...
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
    shadeBlocks(blocks, colours, rowsOf(blocks), {pixels.data(), blockAt.data(), width, height},
                threads);
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
  shadeBlocks(blocks, colours, rowsOf(blocks), {pixels.data(), blockAt.data(), width, height}, 2);
  EXPECT_EQ(blockAt[0], 201U);
  EXPECT_EQ(blockAt[9 * width + 199], 2200U);
  EXPECT_EQ(blockAt[200], 200U);
  EXPECT_EQ(blockAt.back(), 200U);
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
  shadeBlocks(blocks, colours, rowsOf(blocks), {pixels.data(), blockAt.data(), width, height}, 2);
  EXPECT_TRUE(pixels == expectedPixels);
  EXPECT_TRUE(blockAt == expectedBlockAt);
}

}  // namespace
}  // namespace app
