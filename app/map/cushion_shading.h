#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stop_token>

#include "app/map/treemap_layout.h"

namespace app {

inline constexpr std::uint32_t kMapBackground = 0x1C1C1E;
/// In the hit map: no block lies here.
inline constexpr std::uint32_t kNoBlock = 0xFFFFFFFF;

/// The two images that shading fills, row by row from the top: 0xRRGGBB for the eye, and the index
/// of the block that lies there. Refers to memory of width × height entries each, which the caller
/// keeps.
struct MapImage {
  std::uint32_t* pixels = nullptr;
  std::uint32_t* blockAt = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Paints one block: every pixel whose place in the image the block's rectangle covers when its
/// edges are rounded to the nearest pixel, half away from 0. A block outside the image or rounded
/// away paints nothing. `colour` is 0xRRGGBB; its top byte is ignored.
void shadeBlock(const TreemapBlock& block, std::uint32_t colour, std::uint32_t blockIndex,
                std::uint32_t* pixels, std::uint32_t* blockAt, std::int32_t width,
                std::int32_t height);

/// Blocks that a band of the map takes or passes over together: neighbours in the list are
/// neighbours on the map.
inline constexpr std::size_t kRunLength = 64;

/// Between which rows, in fractional pixels, a run of blocks lies.
struct RunRows {
  double top = 0;
  double bottom = 0;
};

/// The rows of each run of `kRunLength` blocks; the last run may be shorter.
void findRunRows(std::span<const TreemapBlock> blocks, std::span<RunRows> rows);

/// How many runs so many blocks make.
constexpr std::size_t runCount(std::size_t blocks) {
  return (blocks + kRunLength - 1) / kRunLength;
}

/// Blocks that follow each other in the layout, with one 0xRRGGBB for each, and what `findRunRows`
/// says of them: the caller, who has just looked at every block for its colour, has that for next
/// to nothing.
struct BlockSequence {
  std::span<const TreemapBlock> blocks;
  std::span<const std::uint32_t> colours;
  std::span<const RunRows> rows;
  /// Of the first block in the whole layout.
  std::uint32_t firstIndex = 0;
};

/// Fills both images with background, on up to `threads` threads. Throws `GivenUp` where `stop` is
/// requested, as `shadeBlocks` does.
void clearImage(const MapImage& image, unsigned threads, const std::stop_token& stop = {});

/// Paints every painted block in the order of the sequences, a later one over an earlier one, band
/// by band of the image: no two threads that paint bands ever write one pixel.
class BandShader {
 public:
  /// As many bands as `threads` threads want, where the image is large enough to pay for them.
  /// Sequences and images outlive it.
  BandShader(std::span<const BlockSequence> sequences, const MapImage& image, unsigned threads);

  std::size_t bands() const { return bands_; }
  /// Each once, in any order and on any thread. Throws `GivenUp` between two sequences once `stop`
  /// is requested.
  void paint(std::size_t band, const std::stop_token& stop) const;

 private:
  void findReach();
  std::int32_t edge(std::size_t band) const;

  const std::span<const BlockSequence> sequences_;
  const MapImage image_;
  std::int32_t top_ = 0;
  std::int32_t bottom_ = 0;
  std::size_t bands_ = 0;
};

/// Paints all bands on up to `threads` threads, and has ended them all when it returns.
void shadeBlocks(std::span<const BlockSequence> sequences, const MapImage& image, unsigned threads,
                 const std::stop_token& stop = {});

}  // namespace app
