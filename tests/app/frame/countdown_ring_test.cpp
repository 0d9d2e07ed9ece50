#include "app/frame/countdown_ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "ui/palette.h"

namespace app {
namespace {

/// The ring by the book: nine samples a pixel, each filled when it lies in the circle and its angle
/// within the fraction of the turn.
std::vector<int> naiveCoverage(int size, double fraction) {
  std::vector<int> all;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      int count = 0;
      for (const double sy : {1 / 6.0, 3 / 6.0, 5 / 6.0}) {
        for (const double sx : {1 / 6.0, 3 / 6.0, 5 / 6.0}) {
          const double right = x + sx - size / 2.0;
          const double up = size / 2.0 - (y + sy);
          if (std::hypot(right, up) > 7.5 * size / 16) continue;
          double turned = std::atan2(right, up) / (2 * std::numbers::pi);
          if (turned < 0) turned += 1;
          if (turned < fraction) ++count;
        }
      }
      all.push_back(count);
    }
  }
  return all;
}

std::vector<int> coverage(int size, double fraction) {
  std::vector<int> all;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) all.push_back(ringCoverage(x, y, size, fraction));
  }
  return all;
}

TEST(CountdownRing, CoversWhatThePlainFormulationCovers) {
  // None of these has an edge that runs through a sample, where rounding decides.
  for (const double fraction : {1.0, 0.913, 0.777, 0.61, 0.433, 0.301, 0.17, 0.0501, 0.0}) {
    EXPECT_EQ(coverage(16, fraction), naiveCoverage(16, fraction)) << fraction;
    EXPECT_EQ(coverage(32, fraction), naiveCoverage(32, fraction)) << fraction;
  }
}

TEST(CountdownRing, IsAFullCircleOfRadiusSevenAndAHalfAtFirst) {
  EXPECT_EQ(ringCoverage(7, 7, 16, 1), 9);
  EXPECT_EQ(ringCoverage(8, 1, 16, 1), 9);
  EXPECT_EQ(ringCoverage(8, 0, 16, 1), 3) << "its edge is half a pixel from the square's";
  EXPECT_EQ(ringCoverage(0, 0, 16, 1), 0);
  long covered = 0;
  for (const int count : coverage(16, 1)) covered += count;
  EXPECT_NEAR(static_cast<double>(covered) / 9, std::numbers::pi * 7.5 * 7.5, 2);
}

TEST(CountdownRing, EmptiesTowardsTheTopAndIsGoneAtTheEnd) {
  EXPECT_EQ(ringCoverage(12, 4, 16, 0.5), 9) << "right half: what is left";
  EXPECT_EQ(ringCoverage(12, 12, 16, 0.5), 9);
  EXPECT_EQ(ringCoverage(3, 8, 16, 0.5), 0);
  EXPECT_EQ(ringCoverage(12, 4, 16, 0.25), 9);
  EXPECT_EQ(ringCoverage(12, 12, 16, 0.25), 0);
  EXPECT_EQ(std::ranges::max(coverage(16, 0)), 0);
}

TEST(CountdownRing, BlendsByTheShareOfSamples) {
  const auto pixels = ringPixels(16, 1, 0xFF0900FF, 0xFF000000);
  ASSERT_EQ(pixels.size(), 256u);
  EXPECT_EQ(pixels[7 * 16 + 7], 0x0900FFu);
  EXPECT_EQ(pixels[8], 0x030055u) << "a third of it";
  EXPECT_EQ(pixels[0], 0x000000u);
}

TEST(CountdownRing, KnowsHowMuchIsLeft) {
  EXPECT_EQ(remainingFraction(10'000, 10'000), 1);
  EXPECT_EQ(remainingFraction(2'500, 10'000), 0.25);
  EXPECT_EQ(remainingFraction(-7, 10'000), 0);
  EXPECT_EQ(remainingFraction(12'000, 10'000), 1);
}

TEST(CountdownRing, TurnsItsColourBetweenSeventyAndThirtyPercent) {
  EXPECT_EQ(ringUrgency(1), 0);
  EXPECT_EQ(ringUrgency(0.7), 0);
  EXPECT_NEAR(ringUrgency(0.6), 0.25, 1e-9);
  EXPECT_NEAR(ringUrgency(0.5), 0.5, 1e-9);
  EXPECT_NEAR(ringUrgency(0.3), 1, 1e-9);
  EXPECT_EQ(ringUrgency(0.1), 1);
  EXPECT_EQ(ringUrgency(0), 1);
}

TEST(CountdownRing, HasTheAccentColourFirstAndAnotherAtTheEnd) {
  for (const ui::Palette& palette : {ui::kLightPalette, ui::kDarkPalette}) {
    EXPECT_EQ(ringColour(1, palette), palette.accent);
    EXPECT_EQ(ringColour(0.71, palette), palette.accent);
    EXPECT_NE(ringColour(0.5, palette), palette.accent);
    EXPECT_NE(ringColour(0.5, palette), ringColour(0.3, palette));
    EXPECT_EQ(ringColour(0.29, palette), ringColour(0, palette));
  }
}

}  // namespace
}  // namespace app
