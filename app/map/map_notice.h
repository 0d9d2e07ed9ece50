#pragma once

#include <string_view>

#include "app/map/rendered_treemap.h"
#include "app/model/measure.h"
#include "app/model/scan_status.h"
#include "sizewalk/file_tree.h"

namespace app {

/// What the map says in its middle where it has nothing to show but one plain colour; empty where
/// it shows something, and while a scan may still find it: a folder is known to be empty before the
/// scan ends only when all that was found in it was taken out. `map` is a picture of `tree` under
/// `measure`; what the tree has found since counts too. Says nothing that is not known: of a scan
/// that was stopped, whatever it has not read, and of a disk that begins in the folder and was not
/// entered. Window thread.
std::string_view mapNotice(const RenderedTreemap& map, const sizewalk::FileTree& tree,
                           const MeasureSettings& measure, const ScanStatus& status);

}  // namespace app
