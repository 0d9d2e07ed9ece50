#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "app/map/cushion_shading.h"

// What the shading kernels share. Internal to the shading.

#ifdef __FAST_MATH__
// It reorders sums and divides by reciprocals: the kernels' pixels would differ, and the bound on
// their error would not hold.
#error "The shading kernels must not be compiled with -ffast-math."
#endif

namespace app {

// The light, a unit vector along (1, 1, 4), and what of a colour it leaves.
inline constexpr double kLightAcross = 0.23570226039551584;  // 1/√18, for both axes
inline constexpr double kLightUp = 0.9428090415820634;       // 4/√18
inline constexpr double kAmbient = 0.2;
inline constexpr double kDiffuse = 0.8;
inline constexpr double kGain = 1.04;
inline constexpr double kShadow = 0.208;

/// Pixels, first inclusive, last exclusive.
struct PixelBounds {
  std::int32_t left = 0;
  std::int32_t right = 0;
  std::int32_t top = 0;
  std::int32_t bottom = 0;

  bool empty() const { return (right <= left) | (bottom <= top); }
};

/// Rows of the image that one call paints.
struct Band {
  std::int32_t top = 0;
  std::int32_t bottom = 0;
};

/// `edge` rounded half away from zero, then clamped to [0, limit].
inline std::int32_t pixelEdge(double edge, std::int32_t limit) {
  // Clamping first gives the same and leaves only values for which a conversion is defined. The
  // addend is the last number before a half: with the half itself 0.49999999999999994 would round
  // up to 1, with this the sum rounds to the whole number for every half and stays below it for
  // everything less.
  const double top = limit;
  const double clamped = edge > 0 ? (edge < top ? edge : top) : 0;
  return static_cast<std::int32_t>(clamped + 0.49999999999999994);
}

inline PixelBounds pixelBounds(const MapRect& rect, std::int32_t width, const Band& band) {
  PixelBounds bounds = {pixelEdge(rect.x, width), pixelEdge(rect.x + rect.width, width),
                        pixelEdge(rect.y, band.bottom),
                        pixelEdge(rect.y + rect.height, band.bottom)};
  if (bounds.top < band.top) bounds.top = band.top;
  return bounds;
}

/// One pixel as the light is defined. Every kernel ends up with this value.
std::uint32_t shadePixel(const CushionCoefficients& cushion, std::uint32_t colour,
                         std::int32_t column, std::int32_t row);

/// A block that has pixels to paint, all that a kernel needs to know of it.
struct PaintJob {
  /// Within the image, not empty.
  PixelBounds bounds;
  const CushionCoefficients* cushion = nullptr;
  std::uint32_t colour = 0;
  std::uint32_t blockIndex = 0;
};

/// Blocks that follow each other in the list, and what belongs to each of them.
struct BlockRun {
  std::span<const TreemapBlock> blocks;
  std::span<const std::uint32_t> colours;
  /// Of the first block in the whole list.
  std::uint32_t firstIndex = 0;
};

/// Writes a job for each painted block of the run that has pixels in the band, in their order, and
/// returns their number. `jobs` has room for the whole run.
using GatherJobs = std::size_t (*)(const BlockRun& run, std::int32_t width, const Band& band,
                                   PaintJob* jobs);

std::size_t gatherJobsPlain(const BlockRun& run, std::int32_t width, const Band& band,
                            PaintJob* jobs);

/// Carries out jobs in their order.
using PaintJobs = void (*)(std::span<const PaintJob> jobs, const MapImage& image);

void paintJobsPlain(std::span<const PaintJob> jobs, const MapImage& image);

// The exact value of a pixel takes a square root and a division in double precision, and a
// processor's divider handles doubles no faster in wide registers than in narrow ones. So the
// vectors compute in single precision, with the gradients taken over from double, and bound the
// error: with u = 2^-24, the rounding of a unit roundoff, the cosine is off by less than 9.5 u (its
// numerator's terms add up to at most the denominator, since the light is a unit vector), the
// factor by less than 12 u, and the product with a channel by one roundoff more. Both ends of the
// interval factor ± 32 u are then taken to whole channels. Truncation is monotonic: where both ends
// give the same pixel that is the pixel, and where they differ, two pixels in a thousand, it is
// computed as the light is defined.
inline constexpr float kFactorError = 0x1p-19F;

/// Beyond this a squared gradient might overflow single precision.
inline constexpr double kCoefficientLimit = 1e9;

/// The shadow factor in single precision, just above it so that 125 × 0.208 is 26 as it is in
/// double.
inline constexpr float kShadowSingle = 0.20800002F;

constexpr bool shadowIsTheSameInSinglePrecision() {
  for (int channel = 0; channel < 256; ++channel) {
    const auto single = static_cast<int>(static_cast<float>(channel) * kShadowSingle);
    if (single != static_cast<int>(channel * kShadow)) return false;
    // The darkest lit pixel, which rounding leaves a trace above the shadow.
    if (single != static_cast<int>(channel * (kAmbient * kGain))) return false;
  }
  return true;
}
static_assert(shadowIsTheSameInSinglePrecision());

/// Computes the pixels from `column` on for which a bit is set in `unsure`, one by one.
void shadeExactly(const PaintJob& job, std::int32_t column, std::int32_t row, unsigned unsure,
                  std::uint32_t* pixels);

#if defined(__x86_64__)
std::size_t gatherJobsAvx2(const BlockRun& run, std::int32_t width, const Band& band,
                           PaintJob* jobs);
void paintJobsAvx2(std::span<const PaintJob> jobs, const MapImage& image);
void paintJobsAvx512(std::span<const PaintJob> jobs, const MapImage& image);
#endif

}  // namespace app
