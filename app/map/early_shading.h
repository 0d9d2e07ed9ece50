#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "app/map/cushion_kernel.h"
#include "app/map/cushion_shading.h"
#include "app/map/picture_block.h"
#include "app/map/treemap_layout.h"

// How the blocks of a layout are painted as soon as they are laid out, each by the thread that has
// it at hand and in no order. Internal to the making of pictures.

namespace app {

/// Blocks that are painted in their order, after all others.
class LateBlocks {
 public:
  /// `index` is that of the block in the whole layout, greater than those before it.
  void add(const TreemapBlock& block, std::uint32_t colour, std::uint32_t index);
  bool empty() const { return blocks_.empty(); }
  /// Appends them, in their order. What refers to them ends with them, or with the next block.
  void addSequences(std::vector<BlockSequence>* sequences);

 private:
  /// Neighbours in the layout: the first one here, and its index there.
  struct Run {
    std::size_t first = 0;
    std::uint32_t firstIndex = 0;
  };
  std::size_t lengthOf(std::size_t run) const;

  std::vector<TreemapBlock> blocks_;
  std::vector<std::uint32_t> colours_;
  std::vector<Run> runs_;
  std::vector<RunRows> rows_;
};

/// Whether a block of a layout in this place may have a pixel in common with another one: where it
/// does, an edge of each lies at the pixel's centre, on one side of it or, after rounding, on the
/// other.
bool maySharePixels(const MapRect& rect);

/// Paints blocks of one layout, at once where no other block has their pixels; the others are added
/// to the late ones. So several of these, on threads of their own, never write one pixel.
class EarlyShader {
 public:
  /// Both outlive it.
  EarlyShader(const MapImage& image, LateBlocks* late) : image_(image), late_(*late) {}
  EarlyShader(const EarlyShader&) = delete;
  EarlyShader& operator=(const EarlyShader&) = delete;

  /// A painted block, by `span` in pixels and 0xRRGGBB. It stays where it is until `flush`, which
  /// is to be called after the last one.
  void add(const TreemapBlock& block, const PixelSpan& span, std::uint32_t colour,
           std::uint32_t index);
  void flush();

 private:
  const MapImage image_;
  LateBlocks& late_;
  std::array<PaintJob, kRunLength> jobs_;
  std::size_t jobCount_ = 0;
};

}  // namespace app
