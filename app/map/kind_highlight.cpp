#include "app/map/kind_highlight.h"

#include <cstddef>

#include "app/map/cushion_shading.h"

namespace app {

std::uint32_t dimmedPixel(std::uint32_t rgb) {
  // A quarter of the colour and three quarters of a dark grey, all three channels at once.
  constexpr std::uint32_t kGrey = 0x151515;
  return ((rgb & 0xFCFCFC) >> 2) + kGrey;
}

void highlightKind(const RenderedTreemap& map, sizewalk::KindIndex kind,
                   std::vector<std::uint32_t>* out) {
  out->resize(map.pixels.size());
  for (std::size_t i = 0; i < map.pixels.size(); ++i) {
    const std::uint32_t block = map.blockAt[i];
    const bool keeps = block != kNoBlock && map.blocks[block].kind == kind;
    (*out)[i] = keeps ? map.pixels[i] : dimmedPixel(map.pixels[i]);
  }
}

}  // namespace app
