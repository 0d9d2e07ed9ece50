#pragma once

#include <cstdint>
#include <span>
#include <stop_token>

#include "app/map/rendered_treemap.h"
#include "app/map/treemap_layout.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/parallel.h"
#include "sizewalk/file_tree.h"

namespace app {

/// Lays out and shades `root` at width × height pixels. A size below 1 or a root that is not
/// published gives a render without blocks and pixels; one above `kMostPixels` throws
/// std::length_error. `recycled` is a render that is no longer needed: its memory is used again,
/// which saves the kernel from handing out some tens of megabytes of fresh pages each time. The
/// work is done by up to `threads` threads, the calling one among them. Throws `GivenUp` some
/// milliseconds after `stop` was requested; a huge folder's own layout is not broken off.
///
/// Any thread. The tree may grow meanwhile; what is drawn is what was published when it was
/// looked at.
RenderedTreemap renderTreemap(const sizewalk::FileTree& tree, sizewalk::NodeId root,
                              std::int32_t width, std::int32_t height, const KindColours& colours,
                              std::span<const ExtraBlock> extraBlocks,
                              const MeasureSettings& measure, RenderedTreemap recycled = {},
                              unsigned threads = hardwareThreads(),
                              const std::stop_token& stop = {});

}  // namespace app
