// One block at a time.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "app/map/cushion_shading.h"
#include "tests/app/map/naive_map.h"
#include "tests/app/map/random_blocks.h"

namespace app {
namespace {

using test::blockOf;
using test::randomCushion;
using test::uniform;

constexpr int kImageWidth = 61;
constexpr int kImageHeight = 43;

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
  static_assert(kGuard >= kImageWidth);
  static constexpr std::uint32_t kUntouched = 0xABADCAFE;

  std::vector<std::uint32_t> values_;
};

/// The two images that a block is painted into.
struct Canvas {
  explicit Canvas(int imageWidth = kImageWidth, int imageHeight = kImageHeight)
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
  const double x = randomEdge(random, kImageWidth);
  const double y = randomEdge(random, kImageHeight);
  const bool small = random() % 2 == 0;
  return {x, y, small ? uniform(random, 0, 5) : std::abs(randomEdge(random, kImageWidth) - x),
          small ? uniform(random, 0, 5) : std::abs(randomEdge(random, kImageHeight) - y)};
}

/// One block painted into an image of its own.
class ShadeBlock : public testing::Test {
 protected:
  void expectShadedAsDefined(const TreemapBlock& block, std::uint32_t colour,
                             int width = kImageWidth, int height = kImageHeight) {
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
      for (const double x : {0.0, 1.0, 5.0, static_cast<double>(kImageWidth - width)}) {
        for (const double y : {0.0, 3.0, static_cast<double>(kImageHeight - height)}) {
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
    for (int x = 0; x < kImageWidth; ++x) {
      EXPECT_EQ(canvas.blockAt[static_cast<std::size_t>(x)], x >= first && x < 11 ? 5 : kNoBlock)
          << edge << " at " << x;
    }
  }
}

TEST_F(ShadeBlock, DrawsNothingWhenItRoundsAwayOrLiesOutside) {
  for (const MapRect& rect :
       {MapRect{3.5, 3, 0.9, 9}, MapRect{3, 4.6, 9, 0.8}, MapRect{-9, 0, 9.4, 9},
        MapRect{kImageWidth - 0.5, 0, 9, 9}, MapRect{0, kImageHeight, 9, 9},
        MapRect{1e300, 0, 9, 9}, MapRect{-1e300, 0, 9, 9}, MapRect{9, 9, -4, 4}}) {
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

}  // namespace
}  // namespace app
