#pragma once

#include <cstdint>
#include <span>

#include "app/map/cushion_shading.h"
#include "app/map/exact_arithmetic.h"
#include "app/map/picture_block.h"

// What a shaded pixel is, and the kernel that computes many of them. Internal to the
// making of pictures.

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

/// The pixels that `rect` is painted on; neither side is more than `kMostPixels`.
inline PixelSpan pixelSpan(const MapRect& rect, std::int32_t width, std::int32_t height) {
  const auto edge = [](double at, std::int32_t limit) {
    return static_cast<std::uint16_t>(pixelEdge(at, limit));
  };
  return {edge(rect.x, width), edge(rect.y, height), edge(rect.x + rect.width, width),
          edge(rect.y + rect.height, height)};
}

/// One pixel as the light is defined.
std::uint32_t shadePixel(const CushionCoefficients& cushion, std::uint32_t colour,
                         std::int32_t column, std::int32_t row);

/// A block that has pixels to paint, all that the kernel needs to know of it.
struct PaintJob {
  /// Within the image, not empty.
  PixelBounds bounds;
  const CushionCoefficients* cushion = nullptr;
  std::uint32_t colour = 0;
  std::uint32_t blockIndex = 0;
};

/// Carries out jobs in their order. Every pixel gets the value that `shadePixel` gives.
void paintJobs(std::span<const PaintJob> jobs, const MapImage& image);

}  // namespace app
