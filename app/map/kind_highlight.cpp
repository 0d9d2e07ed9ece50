#include "app/map/kind_highlight.h"

#include <cstddef>

#include "app/map/cushion_shading.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::NodeId;

namespace {

bool isOfKind(const TreemapBlock& block, const FileTree& tree, int kind,
              const MeasureSettings& measure) {
  if (block.id < 0 || block.restCount > 0 || !block.painted) return false;
  return drawnKind(tree, static_cast<NodeId>(block.id), measure) == kind;
}

}  // namespace

std::uint32_t dimmedPixel(std::uint32_t rgb) {
  // A quarter of the colour and three quarters of a dark grey, all three channels at once.
  constexpr std::uint32_t kGrey = 0x151515;
  return ((rgb & 0xFCFCFC) >> 2) + kGrey;
}

void highlightKind(const RenderedTreemap& map, const FileTree& tree, int kind,
                   const MeasureSettings& measure, std::vector<std::uint32_t>* out) {
  std::vector<std::uint8_t> shines(map.blocks.size());
  for (std::size_t i = 0; i < shines.size(); ++i) {
    shines[i] = isOfKind(map.blocks[i], tree, kind, measure) ? 1 : 0;
  }
  out->resize(map.pixels.size());
  for (std::size_t i = 0; i < map.pixels.size(); ++i) {
    const std::uint32_t block = map.blockAt[i];
    const bool keeps = block != kNoBlock && shines[block] != 0;
    (*out)[i] = keeps ? map.pixels[i] : dimmedPixel(map.pixels[i]);
  }
}

}  // namespace app
