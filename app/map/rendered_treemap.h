#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "app/map/outline_rects.h"
#include "app/map/picture_block.h"
#include "app/map/treemap_layout.h"
#include "app/model/kind_colours.h"
#include "app/model/settings.h"
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

}  // namespace app
