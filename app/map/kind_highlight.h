#pragma once

#include <cstdint>
#include <vector>

#include "app/map/treemap_render.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// Writes the pixels of `map`, made of `tree` under `measure`, to `out`: as they are where a block
/// is of `kind`, dimmed elsewhere. A folder drawn as one block has the kind that it is coloured by;
/// merged entries and what is beside the tree are of no kind. Any thread.
void highlightKind(const RenderedTreemap& map, const sizewalk::FileTree& tree, int kind,
                   const MeasureSettings& measure, std::vector<std::uint32_t>* out);

/// A pixel, 0xRRGGBB, as it looks where another kind is highlighted.
std::uint32_t dimmedPixel(std::uint32_t rgb);

}  // namespace app
