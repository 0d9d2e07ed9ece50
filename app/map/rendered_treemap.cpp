#include "app/map/rendered_treemap.h"

#include <algorithm>
#include <optional>

#include "app/map/cushion_shading.h"

namespace app {

const PictureBlock* RenderedTreemap::blockUnder(std::int32_t x, std::int32_t y) const {
  if (blocks.empty() || x < 0 || y < 0 || x >= width || y >= height) return nullptr;
  const std::uint32_t index =
      blockAt[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
              static_cast<std::size_t>(x)];
  return index == kNoBlock ? nullptr : &blocks[index];
}

const PixelSpan* RenderedTreemap::outlineRect(sizewalk::NodeId node) const {
  const std::optional<std::uint32_t> block = outlineRects.blockOf(node, blocks);
  return block ? &blocks[*block].rect : nullptr;
}

std::int64_t RenderedTreemap::restSize(const PictureBlock& block) const {
  const auto rest = std::ranges::find(rests, block.id, &RestSum::id);
  return rest == rests.end() ? 0 : rest->size;
}

}  // namespace app
