#include "app/map/treemap_render.h"

#include <cstddef>
#include <stdexcept>
#include <utility>

#include "app/map/block_painter.h"
#include "app/map/map_maker.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::NodeId;

namespace {

void findExtras(RenderedTreemap* map) {
  for (std::uint32_t i = 0; i < map->blocks.size(); ++i) {
    const PictureBlock& block = map->blocks[i];
    if (block.id < 0 && block.restCount == 0) map->extras.push_back(i);
  }
}

}  // namespace

RenderedTreemap renderTreemap(const FileTree& tree, NodeId root, std::int32_t width,
                              std::int32_t height, const KindColours& colours,
                              std::span<const ExtraBlock> extraBlocks,
                              const MeasureSettings& measure, RenderedTreemap recycled,
                              unsigned threads, const std::stop_token& stop) {
  if (width > kMostPixels || height > kMostPixels) throw std::length_error("too large a map");
  RenderedTreemap map = std::move(recycled);
  map.width = width;
  map.height = height;
  map.root = root;
  map.rootSize = 0;
  map.kindColours = colours;
  map.rests.clear();
  map.extras.clear();
  map.extraColours.clear();
  const bool nothingToShow = width < 1 || height < 1 || root >= tree.nodeCount();
  const std::size_t pixels =
      nothingToShow ? 0 : static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  map.pixels.resize(pixels);
  map.blockAt.resize(pixels);
  if (nothingToShow) map.blocks.clear();  // otherwise every one of them is written
  if (!nothingToShow) {
    map.rootSize = measureValue(tree, root, measure);
    for (const ExtraBlock& extra : extraBlocks) map.extraColours.insert_or_assign(extra.id, extra);
    const MapRect whole = {0, 0, static_cast<double>(width), static_cast<double>(height)};
    const LayoutParts layout(tree, root, whole, measure, extraBlocks, kBlocksInPart);
    const BlockPainter painter(tree, measure, colours, map.extraColours);
    makeMap(layout, painter, threads, stop, &map);
    if (!extraBlocks.empty()) findExtras(&map);
  }
  endWhereGivenUp(stop);
  map.outlineRects.assign(map.blocks, threads);
  return map;
}

}  // namespace app
