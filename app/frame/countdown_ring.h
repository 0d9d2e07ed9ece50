#pragma once

#include <cstdint>
#include <vector>

#include "ui/colour.h"
#include "ui/palette.h"

// The ring that tells how long an item still waits: a circle of which a share is filled, from the
// top clockwise.

namespace app {

/// Side of the square that holds the ring, at scale 1.
inline constexpr int kRingSize = 16;

/// How much of a countdown of `totalMs` is left, 0 to 1.
double remainingFraction(std::int64_t remainingMs, std::int64_t totalMs);

/// How many of the nine samples of pixel (x, y) are filled, in a square of `size` pixels with
/// `fraction` of the circle left.
int ringCoverage(int x, int y, int size, double fraction);

/// The ring in its square of `size` x `size` pixels, row by row, as `ui::Canvas::putPixels` takes
/// them: `colour` over `ground` by the share of filled samples.
std::vector<std::uint32_t> ringPixels(int size, double fraction, ui::Colour colour,
                                      ui::Colour ground);

/// How far the ring's colour has turned from that of a long wait to that of the end: 0 with 70
/// percent left and more, 1 with 30 percent and less.
double ringUrgency(double fraction);

/// The ring's colour with `fraction` left.
ui::Colour ringColour(double fraction, const ui::Palette& palette);

}  // namespace app
