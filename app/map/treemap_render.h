#pragma once

#include <cstdint>
#include <span>
#include <stop_token>
#include <unordered_map>
#include <vector>

#include "app/map/outline_rects.h"
#include "app/map/picture_block.h"
#include "app/map/treemap_layout.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/parallel.h"
#include "app/model/settings.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/file_tree.h"

namespace app {

/// One finished picture of the map and all that is needed to answer what lies where in it. Owned by
/// the picture of the map, replaced whole by the next render.
struct RenderedTreemap {
  /// Pixels.
  std::int32_t width = 0;
  std::int32_t height = 0;
  /// The focused folder, and its size under the measure when the map was made.
  sizewalk::NodeId root = 0;
  std::int64_t rootSize = 0;
  /// The colours of the kinds that it was drawn with.
  KindColours kindColours{setting::kConsistentKindColours.fallback};
  /// In layout order. Empty when there is nothing to show; the view then shows the background.
  std::vector<PictureBlock> blocks;
  /// One for each rest block, in layout order.
  std::vector<RestSum> rests;
  /// 0xRRGGBB, row by row from the top.
  std::vector<std::uint32_t> pixels;
  /// For every pixel the index of its block in `blocks`, or `kNoBlock`.
  std::vector<std::uint32_t> blockAt;
  /// The blocks of what is beside the tree, by their places in `blocks`, but for those merged with
  /// others.
  std::vector<std::uint32_t> extras;
  /// By the extra blocks' ids.
  std::unordered_map<std::int32_t, ExtraBlock> extraColours;
  OutlineRects outlineRects;

  /// The block under a pixel; null beside every block and outside the map.
  const PictureBlock* blockUnder(std::int32_t x, std::int32_t y) const;
  /// The rectangle that stands for a node, that of a folder around its contents; null when the map
  /// does not show the node by itself.
  const PixelSpan* outlineRect(sizewalk::NodeId node) const;
  /// What was merged into the rest block `block` adds up to, in bytes. Looks at all of them.
  std::int64_t restSize(const PictureBlock& block) const;
};

/// Lays out and shades `root` at width × height pixels. A size below 1 or a root that is not
/// published gives a render without blocks and pixels; one above `kMostPixels` throws
/// std::length_error. `recycled` is a render that is no longer
/// needed: its memory is used again, which saves the kernel from handing out some tens of megabytes
/// of fresh pages each time. The work is done by up to `threads` threads, the calling one among
/// them. Throws `GivenUp` some milliseconds after `stop` was requested; a huge folder's own layout
/// is not broken off.
///
/// Any thread. The tree may grow meanwhile; what is drawn is what was published when it was
/// looked at.
RenderedTreemap renderTreemap(const sizewalk::FileTree& tree, sizewalk::NodeId root,
                              std::int32_t width, std::int32_t height, const KindColours& colours,
                              std::span<const ExtraBlock> extraBlocks,
                              const MeasureSettings& measure, RenderedTreemap recycled = {},
                              unsigned threads = hardwareThreads(),
                              const std::stop_token& stop = {});

/// The kind of what fills a folder: that of the largest entry of its largest subfolder and so on
/// inwards, as far as a bounded look finds it. Any thread.
sizewalk::KindIndex dominantKind(const sizewalk::FileTree& tree, sizewalk::NodeId folder,
                                 const MeasureSettings& measure);

/// The kind that a node's block is coloured by: that of a file, what fills a folder, and of a
/// folder that nothing fills the kind of what has no other. Any thread.
sizewalk::KindIndex drawnKind(const sizewalk::FileTree& tree, sizewalk::NodeId node,
                              const MeasureSettings& measure);

}  // namespace app
