#include "app/frame/countdown_ring.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "ui/button.h"

namespace app {

namespace {

/// Of the circle, in a square of `kRingSize`.
constexpr double kRadius = 7.5;
/// Samples a pixel, across and down.
constexpr int kSamples = 3;

/// What the colour turns to: a red that is seen on the ground of either mode.
constexpr ui::Colour kUrgent = 0xFFE0402F;
constexpr double kTurnsFrom = 0.7;
constexpr double kTurnsFor = 0.4;

constexpr double kFullTurn = 2 * std::numbers::pi;

/// Clockwise from the top, 0 to a full turn.
double angleOf(double dx, double dy) {
  const double angle = std::atan2(dx, -dy);
  return angle < 0 ? angle + kFullTurn : angle;
}

}  // namespace

double remainingFraction(std::int64_t remainingMs, std::int64_t totalMs) {
  return std::clamp(static_cast<double>(remainingMs) / static_cast<double>(totalMs), 0.0, 1.0);
}

int ringCoverage(int x, int y, int size, double fraction) {
  const double centre = size / 2.0;
  const double radius = kRadius * size / kRingSize;
  const double filledTo = fraction * kFullTurn;
  int covered = 0;
  for (int row = 0; row < kSamples; ++row) {
    for (int column = 0; column < kSamples; ++column) {
      const double dx = x + (column + 0.5) / kSamples - centre;
      const double dy = y + (row + 0.5) / kSamples - centre;
      const bool inside = dx * dx + dy * dy <= radius * radius;
      covered += inside && angleOf(dx, dy) < filledTo;
    }
  }
  return covered;
}

std::vector<std::uint32_t> ringPixels(int size, double fraction, ui::Colour colour,
                                      ui::Colour ground) {
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const double share = ringCoverage(x, y, size, fraction) / double{kSamples * kSamples};
      pixels.push_back(ui::mixed(ground, colour, share) & 0xFFFFFF);
    }
  }
  return pixels;
}

double ringUrgency(double fraction) {
  return std::clamp((kTurnsFrom - fraction) / kTurnsFor, 0.0, 1.0);
}

ui::Colour ringColour(double fraction, const ui::Palette& palette) {
  return ui::mixed(palette.accent, kUrgent, ringUrgency(fraction));
}

}  // namespace app
