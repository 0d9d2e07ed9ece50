#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "app/map/cushion_kernel.h"
#include "app/map/cushion_shading.h"

// The shading as one would write it down first. All of it stands in this header, so that the
// compiler sees the whole loop at once, as it does with the kernel: calling `app::shadePixel`,
// which lies in another file, for every pixel would make the plain loop look slower than it has to
// be.

namespace bench {

inline std::uint32_t plainChannel(std::uint32_t channel, double factor) {
  const double value = channel * factor;
  return value < 255 ? static_cast<std::uint32_t>(value) : 255;
}

/// The value of `app::shadePixel`.
inline std::uint32_t plainPixel(const app::CushionCoefficients& cushion, std::uint32_t colour,
                                std::int32_t column, std::int32_t row) {
  const double gx = 2 * cushion.quadraticX * (column + 0.5) + cushion.linearX;
  const double gy = 2 * cushion.quadraticY * (row + 0.5) + cushion.linearY;
  const double cosine = (gx * app::kLightAcross + gy * app::kLightAcross + app::kLightUp) /
                        std::sqrt(gx * gx + gy * gy + 1);
  const double factor =
      cosine < 0 ? app::kShadow : (app::kDiffuse * cosine + app::kAmbient) * app::kGain;
  if (cosine >= 0 && factor >= 1) return colour & 0xFFFFFF;
  return plainChannel(colour >> 16 & 255, factor) << 16 |
         plainChannel(colour >> 8 & 255, factor) << 8 | plainChannel(colour & 255, factor);
}

/// Pixel after pixel, row after row. What does not change within the block is in copies of its own:
/// the compiler could not know that writing the pixels leaves it as it is.
inline void shadeBlockPlainly(const app::TreemapBlock& block, std::uint32_t colour,
                              std::uint32_t blockIndex, const app::MapImage& image) {
  const app::PixelBounds bounds = app::pixelBounds(block.rect, image.width, {0, image.height});
  const app::CushionCoefficients cushion = block.cushion;
  for (std::int32_t row = bounds.top; row < bounds.bottom; ++row) {
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(row) * image.width;
    std::uint32_t* const pixels = image.pixels + start;
    std::uint32_t* const blockAt = image.blockAt + start;
    for (std::int32_t column = bounds.left; column < bounds.right; ++column) {
      pixels[column] = plainPixel(cushion, colour, column, row);
      blockAt[column] = blockIndex;
    }
  }
}

/// Fills both images as `app::shadeBlocks` does, block after block on the calling thread.
inline void shadePlainly(const std::vector<app::TreemapBlock>& blocks,
                         const std::vector<std::uint32_t>& colours, const app::MapImage& image) {
  const auto pixels =
      static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
  std::fill_n(image.pixels, pixels, app::kMapBackground);
  std::fill_n(image.blockAt, pixels, app::kNoBlock);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (!blocks[i].painted) continue;
    shadeBlockPlainly(blocks[i], colours[i], static_cast<std::uint32_t>(i), image);
  }
}

}  // namespace bench
