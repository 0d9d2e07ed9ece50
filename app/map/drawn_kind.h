#pragma once

#include "app/model/measure.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/file_tree.h"

namespace app {

/// The kind of what fills a folder: that of the largest entry of its largest subfolder and so on
/// inwards, as far as a bounded look finds it. Any thread.
sizewalk::KindIndex dominantKind(const sizewalk::FileTree& tree, sizewalk::NodeId folder,
                                 const MeasureSettings& measure);

/// The kind that a node's block is coloured by: that of a file, what fills a folder, and of a
/// folder that nothing fills the kind of what has no other. Any thread.
sizewalk::KindIndex drawnKind(const sizewalk::FileTree& tree, sizewalk::NodeId node,
                              const MeasureSettings& measure);

}  // namespace app
