#pragma once

#include <cstdint>
#include <vector>

#include "app/map/rendered_treemap.h"
#include "sizewalk/file_kinds.h"

namespace app {

/// Writes the pixels of `map` to `out`: as they are where a block is of `kind`, which is in the
/// list, and dimmed elsewhere. Goes by the kinds that the map was made with. Any thread.
void highlightKind(const RenderedTreemap& map, sizewalk::KindIndex kind,
                   std::vector<std::uint32_t>* out);

/// A pixel, 0xRRGGBB, as it looks where another kind is highlighted.
std::uint32_t dimmedPixel(std::uint32_t rgb);

}  // namespace app
