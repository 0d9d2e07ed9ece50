#pragma once

#include <cstddef>
#include <stop_token>

#include "app/map/block_painter.h"
#include "app/map/rendered_treemap.h"
#include "app/map/treemap_layout.h"

// The way of a layout onto a picture. Internal to the making of pictures.

namespace app {

/// About so many blocks are laid out in one go by one thread.
inline constexpr std::size_t kBlocksInPart = 8192;

/// Lays out the parts of `layout` and paints them into `map`, both on up to `threads` threads, the
/// calling one among them: blocks, rests, pixels and `blockAt`, which have the size of the map
/// already. Throws `GivenUp` some milliseconds after `stop` was requested. Any thread; `map` is
/// nobody else's meanwhile.
void makeMap(const LayoutParts& layout, const BlockPainter& painter, unsigned threads,
             const std::stop_token& stop, RenderedTreemap* map);

}  // namespace app
